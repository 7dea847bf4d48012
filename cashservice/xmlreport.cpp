// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "xmlreport.h"

#include <expat.h>

#include <memory>

namespace cash {
namespace {
std::string textOf(const XML_Char *text)
{
    return text == nullptr ? std::string() : std::string(text);
}

void noteDeclaration(void *data, const XML_Char *version, const XML_Char *encoding, int /*standalone*/)
{
    auto *const report = static_cast<XmlReport *>(data);
    report->version = textOf(version);
    report->encoding = textOf(encoding);
}

void noteDocumentType(void *data, const XML_Char * /*name*/, const XML_Char * /*systemId*/,
                      const XML_Char * /*publicId*/, int /*hasInternalSubset*/)
{
    static_cast<XmlReport *>(data)->hasDocumentType = true;
}
} // namespace

XmlReport examineXml(std::string_view document)
{
    XmlReport report;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> owner(XML_ParserCreate("UTF-8"), XML_ParserFree);
    XML_Parser parser = owner.get();
    XML_SetUserData(parser, &report);
    XML_SetXmlDeclHandler(parser, noteDeclaration);
    XML_SetStartDoctypeDeclHandler(parser, noteDocumentType);
    if (XML_Parse(parser, document.data(), static_cast<int>(document.size()), XML_TRUE) == XML_STATUS_OK)
        return report;
    report.error = XML_ErrorString(XML_GetErrorCode(parser));
    report.line = XML_GetCurrentLineNumber(parser);
    report.column = XML_GetCurrentColumnNumber(parser) + 1;
    return report;
}
} // namespace cash
