#include "commands/lsp/JsonRpc.h"

#include <nlohmann/json.hpp>

#include "text/Printable.h"
#include "text/ShortText.h"

namespace vexa::runner {
namespace {

using nlohmann::json;

constexpr const char* kVersion = "2.0";

std::string textOf(json message) {
    message["jsonrpc"] = kVersion;
    return message.dump(-1, ' ', false, json::error_handler_t::replace);
}

void requireThat(bool isRight, const char* message) {
    if (!isRight) throw RpcError(kInvalidRequest, message);
}

}  // namespace

std::string resultText(const json& id, const json& result) { return textOf({{"id", id}, {"result", result}}); }

std::string errorText(const json& id, const RpcError& error) {
    return textOf({{"id", id}, {"error", {{"code", error.code()}, {"message", error.what()}}}});
}

std::string notificationText(const std::string& method, const json& params) {
    return textOf({{"method", method}, {"params", params}});
}

std::string requestText(const std::string& id, const std::string& method, const json& params) {
    return textOf({{"id", id}, {"method", method}, {"params", params}});
}

json parseMessage(const std::string& text) {
    json message;
    try {
        message = json::parse(text);
    } catch (const json::exception& error) {
        throw RpcError(kParseError, "the message is no JSON: " + shortText(printableLine(error.what())));
    }
    requireThat(message.is_object(), "the message is no object");
    return message;
}

json idOf(const json& message) {
    const auto id = message.find("id");
    const bool isValid = id != message.end() && (id->is_string() || id->is_number_integer());
    return isValid ? *id : json();
}

void requireCall(const json& message) {
    requireThat(message.value("jsonrpc", json()) == kVersion, "the member jsonrpc is not \"2.0\"");
    requireThat(message.at("method").is_string(), "the method is no text");
    requireThat(!message.contains("id") || !idOf(message).is_null(), "the id is neither a text nor an integer");
    const auto params = message.find("params");
    requireThat(params == message.end() || params->is_structured(), "the parameters are neither object nor array");
}

}  // namespace vexa::runner
