#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <utility>

using Json = nlohmann::json;

/// The numbers that the protocol has for failures.
enum class ProtocolFault
{
    ParseError = -32700,
    InvalidRequest = -32600,
    MethodNotFound = -32601,
    InvalidParams = -32602,
    InternalError = -32603,
    ServerNotInitialized = -32002,
    RequestCancelled = -32800
};

/// What a request fails with.
class ProtocolError : public std::runtime_error
{
public:
    ProtocolError(ProtocolFault fault, const std::string& message) : std::runtime_error(message), fault(fault) {}
    const ProtocolFault fault;
};

inline Json MakeResponse(const Json& id, Json result)
{
    return {{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}};
}

inline Json MakeErrorResponse(const Json& id, ProtocolFault fault, const std::string& message)
{
    return {{"jsonrpc", "2.0"}, {"id", id}, {"error", {{"code", static_cast<int>(fault)}, {"message", message}}}};
}

inline Json MakeNotification(const char* method, Json params)
{
    return {{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}};
}
