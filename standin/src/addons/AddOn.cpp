#include "addons/AddOn.h"

#include <dlfcn.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "addons/ObjectFile.h"
#include "calls/CallSlots.h"
#include "calls/HandledException.h"
#include "calls/Whereabouts.h"
#include "contract/MacroLine.h"

namespace vexa::standin {
namespace {

constexpr char kEntryName[] = "vexaAddOn";

bool isNullOrEmpty(const char* text) { return text == nullptr || *text == '\0'; }

// Adds a folder, because the loader searches the system's folders for a name without one.
std::string withFolder(const std::string& path) { return path.find('/') == std::string::npos ? "./" + path : path; }

// Returns why the file cannot be loaded; empty if the loader may try.
std::string whyNoFile(const std::string& path) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) return "no such file";
    if (error) return error.message();
    if (std::filesystem::is_directory(status)) return "it is a folder, not an add-on";
    return std::filesystem::is_regular_file(status) ? whyNotLoadable(path) : "not a regular file";
}

// The loader's text starts with the path, and ends with the name of a missing symbol.
std::string whyNotLoaded(const std::string& path, std::string_view loaderText) {
    constexpr std::string_view kUndefined = "undefined symbol: ";
    const std::string prefix = path + ": ";
    if (loaderText.substr(0, prefix.size()) == prefix) loaderText.remove_prefix(prefix.size());
    if (loaderText.substr(0, kUndefined.size()) == kUndefined) {
        return "unresolved symbol " + std::string(loaderText.substr(kUndefined.size()));
    }
    return "it cannot be loaded: " + std::string(loaderText);
}

// Runs code of an add-on, and returns the exception that escapes.
template <class Action>
std::optional<Escape> whatEscapes(const std::string& place, const Action& action) {
    try {
        const Whereabouts inAddOn(true);
        action();
        return std::nullopt;
    } catch (const std::exception& exception) {
        const char* const message = isNullOrEmpty(exception.what()) ? "no message" : exception.what();
        return Escape{"an exception escaped from " + place + ": " + message, handledException()};
    } catch (...) {
        return Escape{"an exception of unknown type escaped from " + place, handledException()};
    }
}

// Returns why the host refuses an add-on with this description; empty if the host accepts it.
std::string whyNotTaken(const VexaAddOn_s* description) {
    if (description == nullptr) return "it refuses to be loaded (its entry returned null)";
    if (description->apiVersion != VEXA_ADDON_API_VERSION) {
        return "it was built for version " + std::to_string(description->apiVersion) +
               " of the add-on interface, but the host has version " + std::to_string(VEXA_ADDON_API_VERSION);
    }
    if (isNullOrEmpty(description->id)) return "it has no id";
    if (hasWhiteSpace(description->id)) return "its id has white space in it: \"" + std::string(description->id) + "\"";
    if (description->execute == nullptr) return "it has no function to execute commands";
    return "";
}

}  // namespace

AddOn::AddOn(const std::string& path) : m_identity(std::make_unique<AddOnList_s>()) {
    m_info.path = withFolder(path);
    const std::string noFile = whyNoFile(m_info.path);
    if (!noFile.empty()) throw refusal(noFile);
    // An exception from the constructor of a global object ends the process. If the exception passed through, the
    // loader would stay locked.
    m_object.reset(dlopen(m_info.path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (m_object == nullptr) throw refusal(whyNotLoaded(m_info.path, dlerror()));
    m_entry = reinterpret_cast<AddOnEntry>(dlsym(m_object.get(), kEntryName));
    if (m_entry == nullptr) throw refusal("it does not export the function vexaAddOn, so it is not an add-on");
}

AddOn::AddOn(AddOnEntry entry) : m_identity(std::make_unique<AddOnList_s>()), m_entry(entry) {
    m_info.path = kLinkedIn;
    if (m_entry == nullptr) throw refusal("its entry is null");
}

void AddOn::enter() {
    // Throw refusals outside of every handler, because an exception keeps the exception that is being handled, which
    // may belong to the add-on.
    const std::optional<Escape> escaped =
        whatEscapes("its entry vexaAddOn", [this] { m_description = m_entry(m_identity.get()); });
    if (escaped) throw refusal(escaped->text);
    const std::string reason = whyNotTaken(m_description);
    if (!reason.empty()) throw refusal(reason);
    m_info.id = m_description->id;
    if (m_description->title != nullptr) m_info.title = m_description->title;
}

std::optional<Escape> AddOn::execute(const std::string& command, bool& accepted, char*& errMsg) const {
    return whatEscapes("the add-on", [&] { accepted = m_description->execute(command.c_str(), &errMsg) == 1; });
}

std::optional<Escape> AddOn::shutDown() const {
    if (m_description->shutdown == nullptr) return std::nullopt;
    return whatEscapes("its shutdown", m_description->shutdown);
}

LoadError AddOn::refusal(const std::string& reason) const {
    std::string line = m_info.path + ": " + reason;
    std::replace_if(line.begin(), line.end(), isLineBreak, ' ');
    return LoadError(line);
}

// If the code were unloaded, a thread of the add-on would crash when it returns from the host.
void AddOn::Unload::operator()(void* object) const {
    if (!haveOtherThreadsCalled()) dlclose(object);
}

}  // namespace vexa::standin
