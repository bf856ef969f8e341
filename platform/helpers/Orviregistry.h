// Registry, folder and file helpers every plug-in uses, written once over the services.
#pragma once
#include "platform/FileSystem.h"
#include "platform/Registry.h"

namespace tc {

// Registry option set: which view a call uses.
using TRegOptions = uint8_t;
inline constexpr TRegOptions RO_None = 0;
inline constexpr TRegOptions RO_Key64 = 1;
inline constexpr TRegOptions RO_Native = 2;

// Text a value's data renders to: strings as stored (up to their terminator), multi-strings
// joined with "; ", numbers in decimal, binary holding UTF-16 text as that text, other binary
// as hexadecimal pairs.
String RegValueToText(const RegValue& value);

bool EnumRegValuesEx(HKEY root, const String& key, StringList& names, StringList& datas,
                     TRegOptions options);
bool EnumRegValueNames(HKEY root, const String& key, StringList& names, TRegOptions options);
bool EnumRegKeysEx(HKEY root, const String& key, StringList& names, TRegOptions options);
bool KeyExist(HKEY root, const String& key, TRegOptions options);
bool ValueExists(HKEY root, const String& key, const String& valueName, TRegOptions options);
String GetRegStringValueDef(HKEY root, const String& key, const String& valueName,
                            const String& def, TRegOptions options);
// 0 on success; lines of a REG_MULTI_SZ (or the one line of a string value).
uint32_t GetRegMultiStringValue(HKEY root, const String& key, const String& valueName,
                                StringList& lines, TRegOptions options);
bool GetRegValue(HKEY root, const String& key, const String& valueName, Bytes& bytes,
                 uint32_t& size, TRegOptions options);
bool GetRegValue(HKEY root, const String& key, const String& valueName, Bytes& bytes,
                 uint32_t& size, uint32_t& type, TRegOptions options);
bool GetRegDWordValue(HKEY root, const String& key, const String& valueName, uint32_t& value,
                      TRegOptions options);

// Writers create the key when it is missing. Writers, deleters and the renamer leave their
// Windows error code as the last error (GetLastOSError).
bool SetRegStringValue(HKEY root, const String& key, const String& valueName,
                       const String& value, TRegOptions options);
bool SetRegMultiStringValue(HKEY root, const String& key, const String& valueName,
                            const StringList& lines, TRegOptions options);
bool SetRegBinaryValue(HKEY root, const String& key, const String& valueName, const Bytes& data,
                       TRegOptions options);
bool SetRegDWordValue(HKEY root, const String& key, const String& valueName, uint32_t value,
                      TRegOptions options);
bool DeleteRegValue(HKEY root, const String& key, const String& valueName, TRegOptions options);
bool DeleteRegKey(HKEY root, const String& keyPath, TRegOptions options);
// Fails when the new name exists already (other than as a case change of the old one).
bool RenameRegValue(HKEY root, const String& key, const String& oldName, const String& newName,
                    TRegOptions options);

// Folders. Shell folders come without trailing delimiter; the application-data folders
// and the Windows folder with one.
String GetFolderLocStr(int csidl);
String GetAppDataDir();
String GetLocalAppDataDir();
String GetWinDir();

bool OrviFileExists(const String& path);
bool DirExists(const String& path);
bool FileOrDirExists(const String& path);
bool IsDirectory(const String& path);
bool FileIsOnFixedDrive(const String& path, bool acceptUnc);
int64_t GetFileSize64(const String& path);
// File names (no path) in `folder` matching `mask`; folders and links are not listed.
bool EnumFiles(const String& folder, StringList& names, const String& mask);
// Sub-folder names of `folder`; links and junctions are not listed.
bool EnumDirectories(const String& folder, StringList& names);
// What a walk needs of each entry of a folder.
// Ascending by upper-cased name, the order of a full folder listing.
void SortByUpperCasedName(std::vector<FileInfo>& entries);

enum class WalkNeeds : uint8_t {
  Everything,      // all a look-up tells, attributes included
  KindsUnordered,  // names and kinds in the backend's order: enough for a walk that counts
  Kinds,           // names and kinds, in name order
  Sizes,           // names, kinds and files' sizes, in name order
};
// One listing of a folder split into the sub-folders to walk and the names that are files in
// it: plain files and links (to files or folders alike: never walked); pipes and devices are
// left out. Name order is ascending by upper-cased name.
bool ListFolderEntries(const String& folder, std::vector<FileInfo>& dirs,
                       std::vector<FileInfo>& files, WalkNeeds needs = WalkNeeds::Everything);
// The same split for a walk that needs no name order and must not hold a huge folder's
// listing: files are handed to `file` while the folder is read (false stops), sub-folders
// collected in `dirs`. False when the folder cannot be listed.
bool VisitFolderFiles(const String& folder, std::vector<FileInfo>& dirs, ListDetail detail,
                      const std::function<bool(FileInfo&)>& file);

// Private-profile string of an ini file.
String GetPPString(const String& section, const String& key, const String& def,
                   const String& fileName);
bool WritePPString(const String& section, const String& key, const String& value,
                   const String& fileName);

// The product's own settings (cookie keep-list); `flags` is reserved and always 0.
bool GetProductRegSetting(const String& section, const String& name, bool def, int flags);

}  // namespace tc
