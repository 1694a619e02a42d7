// SPDX-License-Identifier: MIT
#include "Responder.h"

#include "PathResolution.h"

namespace brevane {

namespace {

// Dot segments take back what precedes them, which need not exist: with them a path can say
// anything and still lead to a folder, whose page would repeat it as markup.
bool mayBringMarkup(std::string_view path) {
    return path.contains('<') && hasDotSegment(path);
}

Response folderResponse(const std::string& folder, const RequestHead& request) {
    if (mayBringMarkup(request.path)) return errorResponse(400);
    if (!request.path.ends_with('/')) return redirectResponse(request.path + '/');

    const std::string index = folder + "/index.html";
    switch (kindOf(index)) {
    case PathKind::nothing:
        return listingResponse(folder, request.path, request.headOnly);
    case PathKind::file:
        return fileResponse(index, request.headOnly);
    default:
        return errorResponse(403);
    }
}

} // namespace

Response respond(const RequestHead& request, const std::string& root) {
    const auto path = resolvedPath(root, request.path);
    if (!path) return errorResponse(403);

    switch (kindOf(*path)) {
    case PathKind::nothing:
        return errorResponse(404);
    case PathKind::file:
        return fileResponse(*path, request.headOnly);
    case PathKind::folder:
        return folderResponse(*path, request);
    default:
        return errorResponse(403);
    }
}

} // namespace brevane
