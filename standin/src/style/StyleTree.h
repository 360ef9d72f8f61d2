#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "objects/HostObjects.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/StyleValue.h"

namespace vexa::standin {

/// What a style query asks for, and where its answer goes.
struct StyleQuery {
    std::vector<std::string> path;         ///< the keywords, outermost first
    std::pair<long, long> offsets{0, 0};   ///< "Offset1" and "Offset2"
    double* number = nullptr;              ///< where a double is wanted; null when none is
    VexaArbParam* anythingElse = nullptr;  ///< where any other value is wanted; null when none is
};

/// The query that the arguments of a list make; nothing when they make none: no "P1", no place for the value, a place
/// for both kinds, or a gap in the path. Of an argument given twice the first counts; one of the wrong kind does not.
std::optional<StyleQuery> styleQueryOf(const std::vector<Argument>& arguments);

/// The host's style settings.
///
/// Keywords are compared ignoring the case of ASCII letters.
/// Threads: safe from any.
class StyleTree {
public:
    /// The value of a setting for one pair of offsets, or for every pair.
    using Offsets = std::optional<std::pair<long, long>>;
    /// A set's handle in the host; empty when the value is no set.
    using SetHandle = std::shared_ptr<Set_s>;

    /// Sets the value at \p path.
    /// \return the handle of the set that it is, and of the one that it replaces.
    /// \throws vexa::InvalidArgumentException when \p path is none.
    std::pair<SetHandle, SetHandle> set(const std::vector<std::string>& path, const Offsets& offsets,
                                        const StyleValue& value);

    /// Answers \p query; stores the value when the answer is Ok.
    GetValueReturnCode_e answer(const StyleQuery& query) const;

private:
    // A text, or a set, is at an address of its own, for add-ons are told where it is.
    using Value = std::variant<double, std::int64_t, std::shared_ptr<const std::string>, SetHandle>;

    static Value valueOf(const StyleValue& value);

    mutable std::mutex m_guard;
    // Within a path the value for every pair of offsets comes first, having none. Deeper paths follow theirs.
    std::map<std::vector<std::string>, std::map<Offsets, Value>> m_values;
};

}  // namespace vexa::standin
