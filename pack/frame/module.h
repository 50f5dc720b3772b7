// The loaded library, as the platform knows it.
#pragma once

namespace undula {

// The handle of this library: on Windows the one that its entry point was given at process attach,
// elsewhere the address at which it is loaded.
void* moduleHandle();

}  // namespace undula
