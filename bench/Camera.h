// The camera's side of a measured download, for programs that do without the product.
#pragma once

namespace bench {

/// Returns a socket that is connected to the camera; negative on failure.
int connectToCamera();

/// Requests `path` and reads the head of the answer. Returns the announced length in bytes, 0 where
/// there is none, or -1 on failure.
long long sendRequest(int camera, const char* path);

} // namespace bench
