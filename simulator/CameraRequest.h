// The requests that the camera understands.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace simulator {

/// What a request asks for, in the order of CameraRequests.inc.
enum class RequestKind {
#define REQUEST(enumerator, name, target, argument, answer) enumerator,
#include "simulator/CameraRequests.inc"
#undef REQUEST
};

/// Returns the name of the kind in the journal and in the fault "only".
std::string_view kindName(RequestKind kind);

/// Returns the target of a request line: the text between "GET " and the last " HTTP/1.1", without
/// "http://192.168.1.120" at its start. Returns nothing if the line has another form.
std::optional<std::string> requestTarget(std::string_view requestLine);

RequestKind requestKind(std::string_view target);

/// Returns the text after the fixed part of a target of this kind, such as a name or the number of
/// entries. The text is empty for a kind that takes no argument, and the whole target for Other,
/// which has no fixed part.
std::string_view requestArgument(RequestKind kind, std::string_view target);

} // namespace simulator
