#pragma once

#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands/lsp/KnownDescriptions.h"
#include "commands/lsp/MacroDocument.h"
#include "terminal/Console.h"
#include "text/TextColumn.h"

namespace vexa::runner {

/// Answers the messages of an editor, as the language server protocol 3.17 defines them. While it lives, the messages
/// of tell() become messages to the editor.
///
/// It answers each message before it returns, on the thread of the caller. What it keeps is limited: a document that is
/// too large is not checked, and the editor gets a message about it.
class LanguageServer : MessageSinkInterface {
public:
    /// Receives a message to the editor, without its header.
    using Send = std::function<void(const std::string& message)>;

    /// \name Limits of what is checked
    /// @{
    static constexpr std::size_t kMostBytes = std::size_t{4} * 1024 * 1024;     ///< of a document
    static constexpr std::size_t kMostLines = 100000;                           ///< of a document
    static constexpr std::size_t kMostMemory = std::size_t{256} * 1024 * 1024;  ///< of all documents together
    /// @}

    /// \param descriptions  the description files of the command line
    LanguageServer(std::vector<std::string> descriptions, Send send);
    ~LanguageServer() override;

    /// Takes a message of the editor.
    void take(const std::string& text);
    /// Reports that a message was lost, because of \p reason.
    void reportLost(const std::string& reason);

    /// Returns true after the notification `exit`.
    bool hasEnded() const { return m_state == State_e::Ended; }
    /// Returns true if the editor sent the request `shutdown`.
    bool wasShutDown() const { return m_wasShutDown; }

private:
    using json = nlohmann::json;

    enum class State_e { New, Serving, ShutDown, Ended };

    struct OpenMacro {
        MacroDocument document;
        std::string folder;  // empty if the document is no file
        std::shared_ptr<const Descriptions> descriptions;
        std::optional<std::int64_t> version;  // of the editor
    };

    using Answer = json (LanguageServer::*)(const json& params);
    using Notice = void (LanguageServer::*)(const json& params);
    static const std::map<std::string_view, Answer>& answers();
    static const std::map<std::string_view, Notice>& notices();

    void tell(const std::string& lines) override;

    void takeMessage(const json& message);
    void takeRequest(const json& id, const std::string& method, const json& params);
    void takeNotification(const std::string& method, const json& params);
    json answer(const std::string& method, const json& params);

    json initialize(const json& params);
    json shutDown(const json& params);
    json completion(const json& params);
    json hover(const json& params);
    json documentSymbols(const json& params);
    json formatting(const json& params);

    void initialized(const json& params);
    void exit(const json& params);
    void didOpen(const json& params);
    void didChange(const json& params);
    void didSave(const json& params);
    void didClose(const json& params);
    void didChangeWorkspace(const json& params);
    void readDescriptionsAgain(const json& params);

    OpenMacro* find(const json& params);
    void change(OpenMacro& macro, const json& change) const;
    bool isTooLarge(const MacroDocument& document) const;
    void checkAndPublish(const std::string& uri);
    void refreshDescriptions(OpenMacro& macro);
    void warnOfNoDescriptions(const std::string& uri);
    void publish(const std::string& uri, const json& diagnostics);
    void publishNone(const std::string& uri);

    Send m_send;
    KnownDescriptions m_known;
    std::map<std::string, OpenMacro> m_macros;  // by their URI
    State_e m_state = State_e::New;
    bool m_wasShutDown = false;
    bool m_hasWarned = false;  // that there are no descriptions
    // What the editor can do:
    ColumnUnit_e m_unit = ColumnUnit_e::Utf16;
    bool m_showsMarkdown = false;
    bool m_nestsSymbols = false;
    bool m_watchesFiles = false;
};

}  // namespace vexa::runner
