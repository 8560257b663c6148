// Requests a recording from the camera, for measured programs that do not use the product's code.
#pragma once

namespace bench {

/// Returns a socket connected to the camera, or -1 on failure.
int connectToCamera();

/// Requests `path` and reads the head of the answer. Returns the announced length in bytes, 0 if
/// there is none, or -1 on failure.
long long sendRequest(int camera, const char* path);

} // namespace bench
