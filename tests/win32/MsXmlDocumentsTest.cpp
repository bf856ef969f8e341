// MSXML documents behave as the pugixml ones the other builds use.
#include "platform/win32/MsXmlDocuments.h"

#include "tests/platform/XmlDocumentCases.h"

namespace tc {
INSTANTIATE_TYPED_TEST_SUITE_P(MsXml, XmlDocumentsTest, MsXmlDocuments);
}  // namespace tc
