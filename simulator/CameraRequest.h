// The requests that the camera understands.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace simulator {

/// What a request asks for.
enum class RequestKind { Count, List, Info, Delete, DeleteAll, Format, Recording, Other };

/// The kind's word in the journal and in the fault "only".
std::string_view kindName(RequestKind kind);

/// The request line's target: what stands between "GET " and the last " HTTP/1.1", as sent, without
/// the scheme and host of the absolute form. Nothing if the line has another form.
std::optional<std::string> requestTarget(std::string_view requestLine);

RequestKind requestKind(std::string_view target);

/// What follows the fixed part of a target of this kind: a name, or the number of entries.
std::string_view requestArgument(RequestKind kind, std::string_view target);

} // namespace simulator
