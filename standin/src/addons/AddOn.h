#pragma once

#include <memory>
#include <optional>
#include <string>

#include "vexa/AddOn.h"
#include "vexastandin/Host.h"

/// The identity of an add-on. Only its address counts.
struct AddOnList_s {};

namespace vexa::standin {

/// The file name of an add-on that is part of the program.
constexpr char kLinkedIn[] = "(linked in)";

/// An exception that escaped from an add-on.
struct Escape {
    std::string text;       ///< for the user
    const void* exception;  ///< where it was; it may be gone
};

/// An add-on: a part of the program, or a shared object, which the destructor unloads. If another thread that has
/// called the host still runs, the shared object stays loaded.
///
/// Errors: an exception that escapes from the add-on is returned as text. The exception itself cannot be kept, because
///         its code may be unloaded with the add-on.
class AddOn {
public:
    /// Loads the shared object, without calling its entry. A path without a slash means the current folder.
    /// \throws LoadError
    explicit AddOn(const std::string& path);
    /// Uses an add-on that is part of the program, without calling its entry.
    /// \throws LoadError if \p entry is null.
    explicit AddOn(AddOnEntry entry);

    /// Calls the entry and checks the description that it returns.
    /// \throws LoadError
    void enter();

    /// Runs one command. Call enter() before.
    /// \param accepted set to true if the add-on reported success, else to false.
    /// \param errMsg   set to the add-on's error string, if any.
    /// \return the exception that escaped; nothing if none escaped.
    std::optional<Escape> execute(const std::string& command, bool& accepted, char*& errMsg) const;
    /// Calls the add-on's shutdown, if it has one. Call enter() before.
    /// \return the exception that escaped; nothing if none escaped.
    std::optional<Escape> shutDown() const;

    /// The functions of the add-on that execute() and shutDown() call; null if there is none.
    const void* executeFunction() const { return reinterpret_cast<const void*>(m_description->execute); }
    const void* shutdownFunction() const { return reinterpret_cast<const void*>(m_description->shutdown); }

    const AddOnInfo& info() const { return m_info; }
    const AddOnList_s* identity() const { return m_identity.get(); }
    /// Returns true if both have the same entry, that is, the same code.
    bool hasSameEntry(const AddOn& other) const { return m_entry == other.m_entry; }
    /// Returns an error that says why this add-on is refused.
    LoadError refusal(const std::string& reason) const;

private:
    struct Unload {
        void operator()(void* object) const;
    };

    AddOnInfo m_info;
    std::unique_ptr<AddOnList_s> m_identity;
    std::unique_ptr<void, Unload> m_object;  ///< null if the add-on is part of the program
    AddOnEntry m_entry = nullptr;
    const VexaAddOn_s* m_description = nullptr;
};

}  // namespace vexa::standin
