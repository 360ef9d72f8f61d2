#include "commands/lsp/LanguageServer.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <utility>

#include "commands/lsp/DocumentAnswers.h"
#include "commands/lsp/FileUri.h"
#include "commands/lsp/JsonRpc.h"
#include "text/Printable.h"
#include "text/ShortText.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

using nlohmann::json;

constexpr int kWarningMessage = 2;
constexpr int kIncrementalSync = 2;
constexpr const char* kMarkdown = "markdown";

// Returns the member at a JSON pointer; null if there is none.
json memberAt(const json& object, const char* pointer) {
    const json::json_pointer path(pointer);
    return object.contains(path) ? object.at(path) : json();
}

bool holds(const json& list, const char* text) {
    return list.is_array() && std::find(list.begin(), list.end(), json(text)) != list.end();
}

bool isTrue(const json& value) { return value.is_boolean() && value.get<bool>(); }

std::string folderOf(const std::string& path) { return std::filesystem::path(path).parent_path().string(); }

std::vector<std::string> foldersIn(const json& many) {
    std::vector<std::string> folders;
    for (const json& folder : many) folders.push_back(pathOfUri(folder.at("uri").get_ref<const std::string&>()));
    return folders;
}

// The folders that the editor has open.
std::vector<std::string> workspaceIn(const json& params) {
    std::vector<std::string> folders;
    const json many = params.value("workspaceFolders", json());
    if (many.is_array()) {
        folders = foldersIn(many);
    } else if (const json root = params.value("rootUri", json()); root.is_string()) {
        folders.push_back(pathOfUri(root.get_ref<const std::string&>()));
    }
    return folders;
}

json capabilities(ColumnUnit_e unit) {
    return {{"positionEncoding", unit == ColumnUnit_e::Utf8 ? "utf-8" : "utf-16"},
            {"textDocumentSync", {{"openClose", true}, {"change", kIncrementalSync}, {"save", true}}},
            {"workspace", {{"workspaceFolders", {{"supported", true}, {"changeNotifications", true}}}}},
            {"completionProvider", {{"triggerCharacters", {" ", "="}}}},
            {"hoverProvider", true},
            {"documentSymbolProvider", true},
            {"documentFormattingProvider", true}};
}

const std::string& uriIn(const json& params) {
    return params.at("textDocument").at("uri").get_ref<const std::string&>();
}

}  // namespace

LanguageServer::LanguageServer(std::vector<std::string> descriptions, Send send)
    : m_send(std::move(send)), m_known(std::move(descriptions)) {
    setMessageSink(this);
}

LanguageServer::~LanguageServer() { setMessageSink(nullptr); }

void LanguageServer::tell(const std::string& lines) {
    const std::string text(withoutTrailingBlanks(lines));
    m_send(notificationText("window/showMessage", {{"type", kWarningMessage}, {"message", text}}));
}

const std::map<std::string_view, LanguageServer::Answer>& LanguageServer::answers() {
    static const std::map<std::string_view, Answer> all = {
        {"initialize", &LanguageServer::initialize},
        {"shutdown", &LanguageServer::shutDown},
        {"textDocument/completion", &LanguageServer::completion},
        {"textDocument/hover", &LanguageServer::hover},
        {"textDocument/documentSymbol", &LanguageServer::documentSymbols},
        {"textDocument/formatting", &LanguageServer::formatting},
    };
    return all;
}

const std::map<std::string_view, LanguageServer::Notice>& LanguageServer::notices() {
    static const std::map<std::string_view, Notice> all = {
        {"initialized", &LanguageServer::initialized},
        {"textDocument/didOpen", &LanguageServer::didOpen},
        {"textDocument/didChange", &LanguageServer::didChange},
        {"textDocument/didSave", &LanguageServer::didSave},
        {"textDocument/didClose", &LanguageServer::didClose},
        {"workspace/didChangeWatchedFiles", &LanguageServer::readDescriptionsAgain},
        {"workspace/didChangeWorkspaceFolders", &LanguageServer::didChangeWorkspace},
    };
    return all;
}

// ---- Messages

void LanguageServer::reportLost(const std::string& reason) {
    m_send(errorText(nullptr, RpcError(kParseError, reason)));
}

void LanguageServer::take(const std::string& text) {
    json id;
    try {
        const json message = parseMessage(text);
        id = idOf(message);
        takeMessage(message);
    } catch (const RpcError& error) {
        m_send(errorText(id, error));
    }
}

void LanguageServer::takeMessage(const json& message) {
    const bool isReply = !message.contains("method") && (message.contains("result") || message.contains("error"));
    if (isReply) return;  // to a request of this server, which needs no reply
    if (!message.contains("method")) throw RpcError(kInvalidRequest, "the message has no method");
    requireCall(message);
    const auto method = message.at("method").get<std::string>();
    const json params = message.value("params", json::object());
    if (message.contains("id")) return takeRequest(idOf(message), method, params);
    takeNotification(method, params);
}

void LanguageServer::takeRequest(const json& id, const std::string& method, const json& params) {
    try {
        m_send(resultText(id, answer(method, params)));
    } catch (const json::exception& error) {
        throw RpcError(kInvalidParams, "wrong parameters: " + shortText(printableLine(error.what())));
    } catch (const RpcError&) {
        throw;
    } catch (const std::exception& error) {
        throw RpcError(kInternalError, error.what());
    }
}

json LanguageServer::answer(const std::string& method, const json& params) {
    const bool isFirst = method == "initialize";
    if (m_state == State_e::New && !isFirst) throw RpcError(kServerNotInitialized, "expected the request initialize");
    if (m_state == State_e::Serving && isFirst) throw RpcError(kInvalidRequest, "the server is initialized already");
    if (m_state == State_e::ShutDown) throw RpcError(kInvalidRequest, "the server is shut down");
    const auto found = answers().find(method);
    if (found == answers().end()) {
        throw RpcError(kMethodNotFound, "the server has no method " + shortText(printableLine(method)));
    }
    return (this->*found->second)(params);
}

// A notification has no reply, so its errors become messages.
void LanguageServer::takeNotification(const std::string& method, const json& params) {
    if (method == "exit") {
        m_state = State_e::Ended;
        return;
    }
    const auto found = notices().find(method);
    if (m_state != State_e::Serving || found == notices().end()) return;
    try {
        (this->*found->second)(params);
    } catch (const std::exception& error) {
        tell(method + ": " + shortText(printableLine(error.what())));
    }
}

// ---- Start and end

json LanguageServer::initialize(const json& params) {
    const json can = params.value("capabilities", json::object());
    for (std::string& folder : workspaceIn(params)) m_known.addWorkspace(std::move(folder));
    if (holds(memberAt(can, "/general/positionEncodings"), "utf-8")) m_unit = ColumnUnit_e::Utf8;
    m_showsMarkdown = holds(memberAt(can, "/textDocument/hover/contentFormat"), kMarkdown);
    m_nestsSymbols = isTrue(memberAt(can, "/textDocument/documentSymbol/hierarchicalDocumentSymbolSupport"));
    m_watchesFiles = isTrue(memberAt(can, "/workspace/didChangeWatchedFiles/dynamicRegistration"));
    m_state = State_e::Serving;
    return {{"capabilities", capabilities(m_unit)},
            {"serverInfo", {{"name", kProgramName}, {"version", VEXA_STANDIN_VERSION}}}};
}

void LanguageServer::initialized(const json&) {
    if (!m_watchesFiles) return;
    const json watcher = {{"globPattern", "**/*.commands.json"}};
    const json registration = {{"id", "descriptions"},
                               {"method", "workspace/didChangeWatchedFiles"},
                               {"registerOptions", {{"watchers", json::array({watcher})}}}};
    m_send(requestText("watch", "client/registerCapability", {{"registrations", json::array({registration})}}));
}

json LanguageServer::shutDown(const json&) {
    m_state = State_e::ShutDown;
    m_wasShutDown = true;
    return nullptr;
}

// ---- Documents

LanguageServer::OpenMacro* LanguageServer::find(const json& params) {
    const auto found = m_macros.find(uriIn(params));
    return found == m_macros.end() ? nullptr : &found->second;
}

void LanguageServer::didOpen(const json& params) {
    const json& opened = params.at("textDocument");
    const std::string& uri = uriIn(params);
    OpenMacro macro{MacroDocument(opened.at("text").get_ref<const std::string&>()), folderOf(pathOfUri(uri)), nullptr,
                    std::nullopt};
    if (opened.value("version", json()).is_number_integer()) macro.version = opened.at("version").get<std::int64_t>();
    refreshDescriptions(macro);
    m_macros.insert_or_assign(uri, std::move(macro));
    warnOfNoDescriptions(uri);
    checkAndPublish(uri);
}

void LanguageServer::didChange(const json& params) {
    OpenMacro* const macro = find(params);
    if (macro == nullptr) return;
    const json version = params.at("textDocument").value("version", json());
    if (version.is_number_integer()) macro->version = version.get<std::int64_t>();
    for (const json& changed : params.at("contentChanges")) change(*macro, changed);
    checkAndPublish(uriIn(params));
}

void LanguageServer::change(OpenMacro& macro, const json& change) const {
    const auto& text = change.at("text").get_ref<const std::string&>();
    const json range = change.value("range", json());
    if (range.is_null()) return macro.document.replaceAll(text);
    const DocumentAnswers places(macro.document, *macro.descriptions, m_unit);
    const TextPlace begin = places.placeOf(range.at("start"));
    const TextPlace end = places.placeOf(range.at("end"));
    const bool isOrdered = begin.line < end.line || (begin.line == end.line && begin.byte <= end.byte);
    if (!isOrdered) throw RpcError(kInvalidParams, "a range ends before it starts");
    macro.document.replace(begin, end, text);
}

void LanguageServer::didSave(const json& params) {
    readDescriptionsAgain(params);  // for editors that do not watch files
}

void LanguageServer::didClose(const json& params) {
    const std::string& uri = uriIn(params);
    if (m_macros.erase(uri) != 0) publishNone(uri);
    m_known.freeUnused();
}

void LanguageServer::didChangeWorkspace(const json& params) {
    const json& event = params.at("event");
    const std::vector<std::string> removed = foldersIn(event.at("removed"));
    for (std::string& folder : foldersIn(event.at("added"))) m_known.addWorkspace(std::move(folder));
    for (const std::string& folder : removed) m_known.removeWorkspace(folder);
    readDescriptionsAgain(params);
}

void LanguageServer::readDescriptionsAgain(const json&) {
    std::vector<std::string> uris;
    for (auto& [uri, macro] : m_macros) {
        const auto before = macro.descriptions;
        refreshDescriptions(macro);
        if (macro.descriptions != before) uris.push_back(uri);
    }
    for (const std::string& uri : uris) checkAndPublish(uri);
}

void LanguageServer::refreshDescriptions(OpenMacro& macro) {
    auto descriptions = m_known.forFolder(macro.folder);
    if (descriptions == macro.descriptions) return;
    macro.descriptions = std::move(descriptions);
    macro.document.forgetMistakes();
}

void LanguageServer::warnOfNoDescriptions(const std::string& uri) {
    if (m_hasWarned || !m_macros.at(uri).descriptions->ids().empty()) return;
    m_hasWarned = true;
    tell(
        "No description was found for this macro, so no mistakes are shown. Put NAME.commands.json beside the macro or "
        "into the open folder, or start 'vexa-standin lsp' with --describe FILE or --addon FILE.");
}

// ---- Diagnostics

bool LanguageServer::isTooLarge(const MacroDocument& document) const {
    if (document.size() > kMostBytes || document.lines().size() > kMostLines) return true;
    std::size_t memory = 0;
    for (const auto& [uri, macro] : m_macros) memory += uri.size() + macro.folder.size() + macro.document.cost();
    return memory > kMostMemory;
}

// Without a description nothing is known about the macro. Otherwise each line would have a mistake.
void LanguageServer::checkAndPublish(const std::string& uri) {
    OpenMacro& macro = m_macros.at(uri);
    const bool isKnown = !macro.descriptions->ids().empty();
    if (isKnown && !isTooLarge(macro.document)) macro.document.check(*macro.descriptions);
    if (!isTooLarge(macro.document)) {
        return publish(uri, DocumentAnswers(macro.document, *macro.descriptions, m_unit).diagnostics());
    }
    tell(shortText(printableLine(uri)) + " is too large to be checked while you type; use 'vexa-standin lint'.");
    publishNone(uri);
    m_macros.erase(uri);
}

void LanguageServer::publish(const std::string& uri, const json& diagnostics) {
    json params = {{"uri", uri}, {"diagnostics", diagnostics}};
    const auto macro = m_macros.find(uri);
    if (macro != m_macros.end() && macro->second.version) params["version"] = *macro->second.version;
    m_send(notificationText("textDocument/publishDiagnostics", params));
}

void LanguageServer::publishNone(const std::string& uri) { publish(uri, json::array()); }

// ---- Requests about a document. One that is not open, or too large, has no answers.

json LanguageServer::completion(const json& params) {
    const OpenMacro* const macro = find(params);
    if (macro == nullptr) return nullptr;
    const DocumentAnswers answers(macro->document, *macro->descriptions, m_unit);
    return answers.completion(answers.placeOf(params.at("position")));
}

json LanguageServer::hover(const json& params) {
    const OpenMacro* const macro = find(params);
    if (macro == nullptr) return nullptr;
    const DocumentAnswers answers(macro->document, *macro->descriptions, m_unit);
    return answers.hover(answers.placeOf(params.at("position")), m_showsMarkdown);
}

json LanguageServer::documentSymbols(const json& params) {
    const OpenMacro* const macro = find(params);
    if (macro == nullptr) return nullptr;
    return DocumentAnswers(macro->document, *macro->descriptions, m_unit).symbols(m_nestsSymbols ? "" : uriIn(params));
}

json LanguageServer::formatting(const json& params) {
    const OpenMacro* const macro = find(params);
    if (macro == nullptr) return nullptr;
    return DocumentAnswers(macro->document, *macro->descriptions, m_unit).formatting();
}

}  // namespace vexa::runner
