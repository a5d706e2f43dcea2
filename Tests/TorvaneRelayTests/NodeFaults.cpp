#include "NodeFaults.h"

namespace torvane::NodeFaults {

Faults all() {
    const auto result = [](const QByteArray& value) {
        return StandInAnswer::ok(R"({"jsonrpc":"2.0","id":1,"result":)" + value + "}");
    };
    const QByteArray error = R"({"jsonrpc":"2.0","id":null,"error":{"code":-32005,"message":"slow down","data":{}}})";
    const StandInAnswer whole = result("\"0x1\"");
    return {
        {"busy", StandInAnswer::status(503, "busy")},
        {"refused by a page", StandInAnswer::status(403, "<!DOCTYPE html><p>Just a moment")},
        {"too many requests", StandInAnswer::status(429, error)},
        {"led elsewhere", StandInAnswer::redirect(307, "https://localhost:1/")},
        {"an error object", StandInAnswer::ok(error)},
        {"no result", StandInAnswer::ok(R"({"jsonrpc":"2.0","id":1})")},
        {"result null", result("null")},
        {"a number", result("7")},
        {"a negative quantity", result("\"-0xfd\"")},
        {"no digits", result("\"0x\"")},
        {"an empty object", result("{}")},
        {"a list", result("[]")},
        {"plain text", StandInAnswer::ok("rate limit exceeded")},
        {"nothing", StandInAnswer::ok("")},
        {"half an answer", whole.cutShort(20, StandInAnswer::Ending::closeNotify)},
        {"a reset", whole.cutShortInHead(0, StandInAnswer::Ending::reset)},
    };
}

Faults oneOfEachKind() {
    const Faults faults = all();
    return {faults[0], faults[4], faults[7], faults[15]};
}

} // namespace torvane::NodeFaults
