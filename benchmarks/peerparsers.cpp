// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "peerparsers.h"

#include <cstring>

#include <expat.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <pugixml.hpp>

namespace {
struct Envelope
{
    QByteArray root;
    QString operation;
    int resultCode = 0;
    BaseParkomatResponse::Properties properties;
};

PeerParsers::Response response(const Envelope &envelope)
{
    if (envelope.root != "Response" || envelope.operation.toLower() != ParkingCheckResponse::OPERATION)
        return nullptr;
    return std::make_unique<ParkingCheckResponse>(envelope.resultCode, envelope.properties);
}

/// What expat's call-backs gather: a property is an element on the second level.
struct ExpatState
{
    Envelope envelope;
    int depth = 0;
    QByteArray text;
};

void onExpatStart(void *userData, const XML_Char *name, const XML_Char **attributes)
{
    auto *state = static_cast<ExpatState *>(userData);
    state->text.resize(0);
    if (++state->depth > 1)
        return;
    state->envelope.root = name;
    for (; *attributes != nullptr; attributes += 2) {
        if (std::strcmp(attributes[0], "Operation") == 0)
            state->envelope.operation = QString::fromUtf8(attributes[1]);
        else if (std::strcmp(attributes[0], "ResultCode") == 0)
            state->envelope.resultCode = QByteArray(attributes[1]).toInt();
    }
}

void onExpatText(void *userData, const XML_Char *text, int size)
{
    static_cast<ExpatState *>(userData)->text.append(text, size);
}

void onExpatEnd(void *userData, const XML_Char *name)
{
    auto *state = static_cast<ExpatState *>(userData);
    if (state->depth-- == 2)
        state->envelope.properties.insert(QString::fromUtf8(name), QString::fromUtf8(state->text));
}

QString toText(const xmlChar *text)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(text));
}

QString attribute(xmlNode *element, const char *name)
{
    xmlChar *value = xmlGetProp(element, reinterpret_cast<const xmlChar *>(name));
    const QString text = toText(value);
    xmlFree(value);
    return text;
}

QString content(xmlNode *element)
{
    xmlChar *value = xmlNodeGetContent(element);
    const QString text = toText(value);
    xmlFree(value);
    return text;
}
} // namespace

PeerParsers::Response PeerParsers::readWithExpat(const QByteArray &body)
{
    ExpatState state;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                              XML_ParserFree);
    XML_SetUserData(parser.get(), &state);
    XML_SetElementHandler(parser.get(), onExpatStart, onExpatEnd);
    XML_SetCharacterDataHandler(parser.get(), onExpatText);
    if (XML_Parse(parser.get(), body.constData(), body.size(), XML_TRUE) != XML_STATUS_OK)
        return nullptr;
    return response(state.envelope);
}

PeerParsers::Response PeerParsers::readWithLibxml2(const QByteArray &body)
{
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(body.constData(), body.size(), nullptr, nullptr, XML_PARSE_NOERROR | XML_PARSE_NONET),
        xmlFreeDoc);
    xmlNode *root = document ? xmlDocGetRootElement(document.get()) : nullptr;
    if (root == nullptr)
        return nullptr;
    Envelope envelope{reinterpret_cast<const char *>(root->name),
                      attribute(root, "Operation"),
                      attribute(root, "ResultCode").toInt(),
                      {}};
    for (xmlNode *child = xmlFirstElementChild(root); child != nullptr; child = xmlNextElementSibling(child))
        envelope.properties.insert(toText(child->name), content(child));
    return response(envelope);
}

PeerParsers::Response PeerParsers::readWithPugixml(const QByteArray &body)
{
    pugi::xml_document document;
    if (!document.load_buffer(body.constData(), static_cast<std::size_t>(body.size())))
        return nullptr;
    const pugi::xml_node root = document.document_element();
    Envelope envelope{
        root.name(), QString::fromUtf8(root.attribute("Operation").value()), root.attribute("ResultCode").as_int(), {}};
    for (const pugi::xml_node child : root.children())
        envelope.properties.insert(QString::fromUtf8(child.name()), QString::fromUtf8(child.child_value()));
    return response(envelope);
}
