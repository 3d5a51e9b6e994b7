// The screen's elements as nodes of an XML document; what the source prints and XPath searches.
#pragma once

#include "phone/automation/source_document.hpp"

#include <pugixml.hpp>

#include <vector>

namespace phone {

// Below `root`; the nodes in the elements' order.
std::vector<pugi::xml_node> addSourceNodes(
    pugi::xml_node root, ElementTree const& tree, SourceOptions const& options);

}
