#include "platform/common/KnownFolders.h"

#include "platform/helpers/TextCodec.h"
#include "platform/helpers/WinPath.h"

namespace tc {

namespace {

struct KnownFolder {
  const char16_t* id;
  int csidl;
  const char16_t* below;  // the known folder's path below the special folder
  bool parent = false;    // the known folder holds the special folder instead
};

const KnownFolder kKnownFolders[] = {
    {u"{B4BFCC3A-DB2C-424C-B029-7FE99A87C641}", kCSIDL_DESKTOP, u""},
    {u"{FDD39AD0-238F-46AF-ADB4-6C85480369C7}", kCSIDL_PERSONAL, u""},
    {u"{374DE290-123F-4565-9164-39C4925E467B}", kCSIDL_PROFILE, u"Downloads"},
    {u"{5E6C858F-0E22-4760-9AFE-EA3317B67173}", kCSIDL_PROFILE, u""},
    {u"{3EB685DB-65F9-4CF6-A03A-E3EF65729F3D}", kCSIDL_APPDATA, u""},
    {u"{F1B32785-6FBA-4FCF-9D55-7B8E7F157091}", kCSIDL_LOCAL_APPDATA, u""},
    {u"{AE50C081-EBD2-438A-8655-8A092E34987A}", kCSIDL_RECENT, u""},
    {u"{625B53C3-AB48-4EC1-BA1F-A1EF4146FC19}", kCSIDL_STARTMENU, u""},
    {u"{A77F5D77-2E2B-44C3-A6A2-ABA601054A51}", kCSIDL_PROGRAMS, u""},
    {u"{A4115719-D62E-491D-AA7C-E74B8BE3B067}", 0x16, u""},  // common start menu
    {u"{0139D44E-6AFE-49F2-8690-3DAFCAE6FFB8}", 0x17, u""},  // common programs
    {u"{9E3995AB-1F9C-4F13-B827-48B24B6C7174}", kCSIDL_APPDATA,
     u"Microsoft\\Internet Explorer\\Quick Launch\\User Pinned"},
    {u"{F38BF404-1D43-42F2-9305-67DE0B28FC23}", kCSIDL_WINDOWS, u""},
    {u"{1AC14E77-02E7-4E5D-B744-2EB1AE5198B7}", kCSIDL_SYSTEM, u""},
    {u"{D65231B0-B2F1-4857-A4CE-A8E7C6EA7D27}", kCSIDL_SYSTEMX86, u""},
    {u"{905E63B6-C1BF-494E-B29C-65B732D3D21A}", kCSIDL_PROGRAM_FILES, u""},
    {u"{6D809377-6AF0-444B-8957-A3773F02200E}", kCSIDL_PROGRAM_FILES, u""},
    {u"{7C5A40EF-A0FB-4BFC-874A-C0F2E0B9FA8E}", kCSIDL_PROGRAM_FILESX86, u""},
    {u"{F7F1ED05-9F6D-47A2-AAAE-29D317C6F066}", kCSIDL_PROGRAM_FILES, u"Common Files"},
    {u"{6365D5A7-0F0D-45E5-87F6-0DA56B6A4F7D}", kCSIDL_PROGRAM_FILES, u"Common Files"},
    {u"{DE974D24-D9C6-4D3E-BF91-F4455120B917}", kCSIDL_PROGRAM_FILESX86, u"Common Files"},
    {u"{33E28130-4E1E-4676-835A-98395C3BC3BB}", 0x27, u""},  // pictures
    {u"{4BD8D571-6D19-48D3-BE97-422220080E43}", 0x0d, u""},  // music
    {u"{18989B1D-99B5-455B-841C-AB7C74E4DDFC}", 0x0e, u""},  // videos
    {u"{62AB5D82-FDC1-4DC3-A9DD-070D1D495D97}", 0x23, u""},  // program data
    {u"{A520A1A4-1780-4FF6-BD18-167343C5AF16}", kCSIDL_PROFILE, u"AppData\\LocalLow"},
    {u"{DFDF76A2-C82A-4D63-906A-5644AC457385}", 0x2e, u"", true},  // public, over its documents
};

}  // namespace

uint32_t KnownFolderFromSpecialFolders(IShell& shell, const String& folderId, String& path) {
  path.clear();
  for (const auto& k : kKnownFolders) {
    if (!SameText(folderId, k.id)) continue;
    if (uint32_t rc = shell.GetSpecialFolder(k.csidl, path)) return rc;
    if (k.parent) path = WinPath::Parent(path);
    if (*k.below) path += (path.back() == u'\\' ? u"" : u"\\") + String(k.below);
    return ERROR_SUCCESS;
  }
  return ERROR_FILE_NOT_FOUND;
}

}  // namespace tc
