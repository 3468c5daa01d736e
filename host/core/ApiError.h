#pragma once

namespace host {

/// What a zuApi_ call stores for its caller. The numbers are documented in
/// docs/host-contract.md.
enum class ApiError : int {
    None = 0,
    UnknownHandle = 1,   ///< never opened, or closed
    InvalidArgument = 2, ///< no name, a suffix that does not fit the call, no or too small an image record
    Refused = 3,         ///< the camera does not know the name or takes no such value now
    ValueTooLarge = 4,   ///< the value does not fit the caller's variable
    NoImage = 5,         ///< time-out, damaged frame, or streaming stopped
};

} // namespace host
