// Quorvex.Upload: the files of a multipart form, for pages that store uploads. Classic ASP
// left this to each page (cutting the body apart with InStrB) or to a bought component; the
// HTTP layer has split the body already, so the page gets the files whole, and storing one
// goes through the checks every upload needs: a harmless name, never a page the server runs,
// never a place outside the site.
//
//   Set up = Server.CreateObject("Quorvex.Upload")
//   Set f = up.File("photo")                 ' Nothing when the field sent no file
//   If Not f Is Nothing Then name = f.SaveIn(Server.MapPath("upload"))
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "automation/dispatch.h"

namespace qv::asp {

struct PageContext;

// The upload object of the request that `context` runs.
Ref<Object> NewUploadObject(const PageContext& context);

// A file name fit to store: the last part of what a browser sent (any folder dropped),
// letters, digits and ".-_" kept (other characters become "_", runs of them one), no leading
// dot or dash, at most 120 bytes with the extension kept. "" when nothing usable is left.
std::string SafeFileName(std::string_view sent);

// Whether a file of this name would be run by the server or read as its configuration
// (".asp", ".asa", ".inc", ...). Such names are never stored, whatever a page allows.
bool IsServerFileName(std::string_view name);

// Writes `data` as a new file in `folder` (which must lie inside `site_root`, and is made when
// missing) under
// SafeFileName(sent), numbered "name-1.ext", "name-2.ext", ... when the name is taken, and
// returns the name it got. Raises with the reason when the name is unsafe or the folder
// wrong; the file is created exclusively, so two requests never share one.
std::string StoreUpload(const std::filesystem::path& site_root, const std::filesystem::path& folder,
                        std::string_view sent, std::string_view data);

}  // namespace qv::asp
