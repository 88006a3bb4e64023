#include "builders.h"

#include "report.h"

#include <sys/time.h>

namespace bench
{

namespace
{

const xmlChar* xml(const char* text)
{
    return reinterpret_cast<const xmlChar*>(text);
}

} // namespace

std::string timestamp()
{
    timeval now{};
    gettimeofday(&now, nullptr);
    return format("%lld.%ld", static_cast<long long>(now.tv_sec), static_cast<long>(now.tv_usec));
}

void PlainBuilder::open()
{
    std::fprintf(stream_,
                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<com.orvik.inventory verion=\"1.0\">\n"
                 "<ResourceSet class=\"com.orvik.inventory.Hardware\" type=\"Hardware\" version=\"1.0\""
                 " timestamp=\"%s\">\n",
                 timestamp().c_str());
}

XmlBuilder::XmlBuilder(FILE* stream) : writer_(xmlNewTextWriter(xmlOutputBufferCreateFile(stream, nullptr)))
{
}

void XmlBuilder::open()
{
    xmlTextWriterStartDocument(writer_, "1.0", "UTF-8", nullptr);
    start("com.orvik.inventory");
    attribute("verion", "1.0");
    raw("\n");
    start("ResourceSet");
    attribute("class", "com.orvik.inventory.Hardware");
    attribute("type", "Hardware");
    attribute("version", "1.0");
    attribute("timestamp", timestamp().c_str());
    raw("\n");
}

void XmlBuilder::close()
{
    end();
    end();
    xmlTextWriterFlush(writer_);
}

void XmlBuilder::list(const char* name)
{
    start("ResourceList");
    attribute("displayName", name);
    raw("\n");
}

void XmlBuilder::resource(const char* name, const char* id)
{
    start("Resource");
    attribute("displayName", name);
    attribute("uniqueId", id);
    raw("\n");
    text(id);
    raw("\n");
}

void XmlBuilder::property(const char* code, const char* label, const char* value)
{
    start("Property");
    attribute("name", code);
    attribute("displayName", label);
    raw("\n");
    text(code);
    raw("\n");
    start("Value");
    attribute("type", "string");
    text(value);
    end();
    end();
}

void XmlBuilder::start(const char* element)
{
    xmlTextWriterStartElement(writer_, xml(element));
}

void XmlBuilder::attribute(const char* name, const char* value)
{
    xmlTextWriterWriteAttribute(writer_, xml(name), xml(value));
}

void XmlBuilder::text(const char* value)
{
    xmlTextWriterWriteString(writer_, xml(value));
}

void XmlBuilder::raw(const char* value)
{
    xmlTextWriterWriteRaw(writer_, xml(value));
}

void XmlBuilder::end()
{
    xmlTextWriterFullEndElement(writer_);
    raw("\n");
}

} // namespace bench
