// XML documents through MSXML (DOMDocument 6.0, else 3.0).
#pragma once
#include "platform/XmlDocument.h"

namespace tc {

// Each document initialises COM for its thread and uninitialises it when destroyed.
// Children are element nodes only, so indices skip the whitespace and comments that
// loading keeps for an unchanged save.
class MsXmlDocuments : public IXmlDocuments {
 public:
  std::unique_ptr<IXmlDocument> Create() override;
};

}  // namespace tc
