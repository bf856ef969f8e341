// The pugixml documents the builds with pugixml use.
#include "platform/common/PugiXmlDocuments.h"

#include "tests/platform/XmlDocumentCases.h"

namespace tc {
INSTANTIATE_TYPED_TEST_SUITE_P(Pugi, XmlDocumentsTest, PugiXmlDocuments);
}  // namespace tc
