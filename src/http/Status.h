// SPDX-License-Identifier: MIT
#pragma once

namespace brevane {

/// The status codes that refuse a request (RFC 9110, section 15.5).
enum class Status { badRequest = 400, forbidden = 403, notFound = 404, methodNotAllowed = 405 };

} // namespace brevane
