// Paths and folders for the engine. Paths are qv::String with "/" as separator; paths that come
// from outside (control files, project settings, include tags) may use "\" or "/" and are
// normalised on the way in. Failures raise qv::Error with VBScript's file error numbers.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "automation/string.h"

namespace qv::fs {

// Every "\" becomes "/"; nothing else changes.
String NormalizeSeparators(StringView path);
// The folder with exactly one "/" at its end ("" stays "").
String WithTrailingSlash(StringView folder);
// folder + "/" + name, separators normalised, without doubling a "/" at the seam. An empty
// folder gives the name alone.
String JoinPath(StringView folder, StringView name);
// The last part of a path, its folder (without the trailing "/"), and what stands behind the
// last "." of the last part ("" when it has none).
String FileNameOf(StringView path);
String ParentFolderOf(StringView path);
String ExtensionOf(StringView path);

std::filesystem::path ToNative(StringView path);
String FromNative(const std::filesystem::path& path);

bool FileExists(StringView path);
bool FolderExists(StringView path);

// Creates one folder; raises 76 when its parent is missing, 58 when it exists.
void CreateFolder(StringView path);
// Creates the folder and every missing folder above it; an existing folder is fine.
void CreateFolders(StringView path);
// Raises 53 when the file is missing.
void DeleteFile(StringView path);
// Removes a folder and all it holds; raises 76 when it is missing.
void DeleteFolder(StringView path);
// Raises 58 when the target exists and `overwrite` is false, 53 when the source is missing.
void CopyFile(StringView from, StringView to, bool overwrite);
void MoveFile(StringView from, StringView to);

// Size in bytes and last change as a local OLE date; both raise 53 for a missing file.
int64_t FileSize(StringView path);
double DateLastModified(StringView path);

// Full paths of the files (or sub-folders) directly in `folder`, sorted by name; raises 76
// when the folder is missing.
std::vector<String> ListFiles(StringView folder);
std::vector<String> ListFolders(StringView folder);

}  // namespace qv::fs
