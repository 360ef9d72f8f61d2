#pragma once

#include <memory>
#include <optional>
#include <string>

#include "vexa/AddOn.h"
#include "vexastandin/Host.h"

/// An add-on's identity with the stand-in host: its address is all there is to it.
struct AddOnList_s {};

namespace vexa::standin {

/// Stands for the file of an add-on that is part of the program.
constexpr char kLinkedIn[] = "(linked in)";

/// An add-on: a shared object, loaded as long as this lives, or a part of the program. The shared object stays loaded
/// when another thread that has called the host still runs then.
///
/// Errors: what escapes from the add-on's code is returned as text. The exception itself is gone by then, for its
///         code may lie in the add-on, and go with it.
class AddOn {
public:
    /// Loads the shared object, without entering it. A path without a slash means the current folder.
    /// \throws LoadError
    explicit AddOn(const std::string& path);
    /// Takes an add-on that is part of the program, without entering it.
    /// \throws LoadError when \p entry is null.
    explicit AddOn(AddOnEntry entry);

    /// Calls the entry and checks what the add-on says of itself.
    /// \throws LoadError
    void enter();

    /// Runs one command. Call enter() before.
    /// \param accepted set to whether the add-on reported success.
    /// \param errMsg   set to the add-on's error string, if any.
    /// \return what escaped; nothing when nothing did.
    std::optional<std::string> execute(const std::string& command, bool& accepted, char*& errMsg) const;
    /// Calls the add-on's shutdown, if it has one. Call enter() before.
    /// \return what escaped; nothing when nothing did.
    std::optional<std::string> shutDown() const;

    const AddOnInfo& info() const { return m_info; }
    const AddOnList_s* identity() const { return m_identity.get(); }
    /// Whether both are one and the same code.
    bool hasSameEntry(const AddOn& other) const { return m_entry == other.m_entry; }
    /// A refusal to load this add-on.
    LoadError refusal(const std::string& reason) const;

private:
    struct Unload {
        void operator()(void* object) const;
    };

    AddOnInfo m_info;
    std::unique_ptr<AddOnList_s> m_identity;
    std::unique_ptr<void, Unload> m_object;  ///< null when it is part of the program
    AddOnEntry m_entry = nullptr;
    const VexaAddOn_s* m_description = nullptr;
};

}  // namespace vexa::standin
