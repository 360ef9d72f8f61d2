#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <stdexcept>
#include <string>

namespace vexa::runner {

/// \name Codes of errors, as JSON-RPC and the language server protocol define them
/// @{
inline constexpr int kParseError = -32700;
inline constexpr int kInvalidRequest = -32600;
inline constexpr int kMethodNotFound = -32601;
inline constexpr int kInvalidParams = -32602;
inline constexpr int kInternalError = -32603;
inline constexpr int kServerNotInitialized = -32002;
/// @}

/// Why a request has no result.
class RpcError : public std::runtime_error {
public:
    RpcError(int code, const std::string& message) : std::runtime_error(message), m_code(code) {}

    int code() const { return m_code; }

private:
    int m_code;
};

/// Return the texts of messages to the editor. Bytes that are no UTF-8 become replacement characters.
std::string resultText(const nlohmann::json& id, const nlohmann::json& result);
std::string errorText(const nlohmann::json& id, const RpcError& error);
std::string notificationText(const std::string& method, const nlohmann::json& params);
std::string requestText(const std::string& id, const std::string& method, const nlohmann::json& params);

/// Returns the message of the editor in \p text, which is an object.
/// \throws RpcError with kParseError if it is not JSON, or with kInvalidRequest if it is no object.
nlohmann::json parseMessage(const std::string& text);

/// Returns the id of \p message; null if it has none that is valid.
nlohmann::json idOf(const nlohmann::json& message);

/// \throws RpcError with kInvalidRequest if \p message, which has a method, breaks JSON-RPC 2.0.
void requireCall(const nlohmann::json& message);

}  // namespace vexa::runner
