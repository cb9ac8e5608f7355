// Reading a command-tree file.
#include "schema/schema_file.h"

#include <libxml/parser.h>

#include "util/log.h"

namespace apconf
{

xml_doc read_schema(const char *reporter, const char *path)
{
    xml_doc document(path ? xmlReadFile(path, "UTF-8", XML_PARSE_NOBLANKS) : nullptr);
    if (!document) {
        LOG_AS(reporter, LOG_ERR, "parse xml '%s' failed, please check xml syntax rules", path ? path : "");
    } else if (!xmlDocGetRootElement(document.get())) {
        LOG_AS(reporter, LOG_ERR, "empty interface param document '%s'", path);
        document.reset();
    }
    return document;
}

}  // namespace apconf
