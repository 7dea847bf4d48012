// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <libxml/parser.h>
#include <libxml/xmlschemas.h>

#include <memory>

/// libxml2 as a second opinion on documents: it knows nothing of Qt, so that what both agree on is XML.
namespace SecondParser {
/// The path of an element, or of an element and its attribute, and its text.
using Values = QList<QPair<QString, QString>>;

inline QString text(const xmlChar *characters)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(characters));
}

/// A document that libxml2 has read, or nothing where it is not well-formed.
class Document
{
public:
    explicit Document(const QByteArray &bytes)
        : m_document(xmlReadMemory(bytes.constData(), bytes.size(), "document.xml", nullptr,
                                   XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_NOERROR | XML_PARSE_NOWARNING))
    {}

    [[nodiscard]] bool isWellFormed() const { return m_document != nullptr; }
    [[nodiscard]] xmlDoc *get() const { return m_document.get(); }

    /// Every attribute, and the text of every element that holds no other, in the order of the document.
    [[nodiscard]] Values values() const
    {
        Values found;
        if (isWellFormed())
            collect(xmlDocGetRootElement(get()), QString(), found);
        return found;
    }

private:
    struct Free
    {
        void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
    };

    static QString content(const xmlNode *node)
    {
        const std::unique_ptr<xmlChar, xmlFreeFunc> characters(xmlNodeGetContent(node), xmlFree);
        return text(characters.get());
    }

    static void collect(xmlNode *element, const QString &parent, Values &found)
    {
        const QString path = parent + text(element->name);
        for (const xmlAttr *attribute = element->properties; attribute != nullptr; attribute = attribute->next)
            found.append({path + QLatin1Char('@') + text(attribute->name),
                          content(reinterpret_cast<const xmlNode *>(attribute))});
        if (xmlChildElementCount(element) == 0)
            found.append({path, content(element)});
        for (xmlNode *child = xmlFirstElementChild(element); child != nullptr; child = xmlNextElementSibling(child))
            collect(child, path + QLatin1Char('/'), found);
    }

    std::unique_ptr<xmlDoc, Free> m_document;
};

/// One of the schemas in docs/schema.
class Schema
{
public:
    explicit Schema(const QString &fileName)
    {
        const QByteArray path = QByteArray(PROTOCOL_SCHEMAS "/") + fileName.toUtf8();
        const std::unique_ptr<xmlSchemaParserCtxt, decltype(&xmlSchemaFreeParserCtxt)> parser(
            xmlSchemaNewParserCtxt(path.constData()), xmlSchemaFreeParserCtxt);
        m_schema.reset(xmlSchemaParse(parser.get()));
    }

    [[nodiscard]] bool isLoaded() const { return m_schema != nullptr; }

    /// What in @a document breaks the schema; nothing where it holds.
    [[nodiscard]] QStringList breaches(const Document &document) const
    {
        QStringList messages;
        const std::unique_ptr<xmlSchemaValidCtxt, decltype(&xmlSchemaFreeValidCtxt)> validator(
            xmlSchemaNewValidCtxt(m_schema.get()), xmlSchemaFreeValidCtxt);
        xmlSchemaSetValidStructuredErrors(
            validator.get(),
            [](void *list, xmlErrorPtr error) {
                static_cast<QStringList *>(list)->append(QString::fromUtf8(error->message).trimmed());
            },
            &messages);
        const int result = xmlSchemaValidateDoc(validator.get(), document.get());
        if (result != 0 && messages.isEmpty())
            messages.append(QStringLiteral("the document could not be checked: %1").arg(result));
        return messages;
    }

private:
    struct Free
    {
        void operator()(xmlSchema *schema) const { xmlSchemaFree(schema); }
    };

    std::unique_ptr<xmlSchema, Free> m_schema;
};
} // namespace SecondParser
