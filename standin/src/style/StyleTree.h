#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "answers/HostAnswers.h"
#include "objects/HostObjects.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/StyleValue.h"

namespace vexa::standin {

/// What a style query asks for, and where its answer goes.
struct StyleQuery {
    std::vector<std::string> path;         ///< the keywords, outermost first
    std::pair<long, long> offsets{0, 0};   ///< "Offset1" and "Offset2"
    double* number = nullptr;              ///< where to store a double; null if the query asks for another value
    VexaArbParam* anythingElse = nullptr;  ///< where to store any other value; null if the query asks for a double
    bool hasSeventhKeyword = false;        ///< the list has "P7"
    bool hasUnknownArgument = false;       ///< the list has another name that no query has
    bool isInOrder = true;                 ///< the keywords were appended in the order of the path
};

/// The query that the arguments of a list make. Nothing if "P1" is missing, the path has a gap, or the list has no
/// place or two places for the value. If an argument is there twice, \p answers says which one counts. One of the wrong
/// kind is ignored.
std::optional<StyleQuery> styleQueryOf(std::vector<Argument> arguments, const HostAnswers& answers);

/// The host's style settings.
///
/// Keywords are compared without regard to the case of ASCII letters.
/// Threads: safe from any.
class StyleTree {
public:
    /// The value of a setting for one pair of offsets, or for every pair.
    using Offsets = std::optional<std::pair<long, long>>;
    /// The handle of a set in the host; empty if the value is no set.
    using SetHandle = std::shared_ptr<Set_s>;

    /// Sets the value at \p path.
    /// \return the handles of the set that \p value is, and of the set that it replaces.
    /// \throws vexa::InvalidArgumentException if \p path is not valid.
    std::pair<SetHandle, SetHandle> set(const std::vector<std::string>& path, const Offsets& offsets,
                                        const StyleValue& value);

    /// Answers \p query as \p answers say. Stores the value if it is found and the answer is Ok.
    GetValueReturnCode_e answer(const StyleQuery& query, const HostAnswers& answers) const;

private:
    // A text or a set is allocated on its own, because add-ons get its address.
    using Value = std::variant<double, std::int64_t, std::shared_ptr<const std::string>, SetHandle>;

    static Value valueOf(const StyleValue& value);
    static void store(const Value& value, const StyleQuery& query);

    /// Finds the value that \p query asks for.
    /// \return the fact that says what the host answers.
    Fact find(const StyleQuery& query, const HostAnswers& answers, const Value*& value) const;
    Fact factAboutUnknown(const StyleQuery& query, const std::vector<std::string>& path) const;

    struct Setting {
        std::vector<std::string> spelling;  // the path as it was given last
        std::map<Offsets, Value> values;    // the value for every pair of offsets comes first
    };

    mutable std::mutex m_guard;
    std::map<std::vector<std::string>, Setting> m_settings;  // by the path in upper case; deeper paths follow a path
};

}  // namespace vexa::standin
