// The builders that are measured against the collector's writers: plain formatted printing, and libxml2's
// writer. Both write to a stream that is theirs until they are gone.

#pragma once

#include <cstdio>
#include <libxml/xmlwriter.h>
#include <string>

namespace bench
{

/// The document's time, in its form.
std::string timestamp();

class PlainBuilder
{
public:
    explicit PlainBuilder(FILE* stream) : stream_(stream) {}

    void open();
    void close() { std::fprintf(stream_, "</ResourceSet>\n</com.orvik.inventory>\n"); }
    void list(const char* name) { std::fprintf(stream_, "<ResourceList displayName=\"%s\">\n", name); }
    void endList() { std::fprintf(stream_, "</ResourceList>\n"); }
    void resource(const char* name, const char* id)
    {
        std::fprintf(stream_, "<Resource displayName=\"%s\" uniqueId=\"%s\">\n%s\n", name, id, id);
    }
    void endResource() { std::fprintf(stream_, "</Resource>\n"); }
    void property(const char* code, const char* label, const char* value)
    {
        std::fprintf(stream_,
                     "<Property name=\"%s\" displayName=\"%s\">\n%s\n<Value type=\"string\">%s</Value>\n"
                     "</Property>\n",
                     code, label, code, value);
    }

private:
    FILE* stream_;
};

class XmlBuilder
{
public:
    explicit XmlBuilder(FILE* stream);
    ~XmlBuilder() { xmlFreeTextWriter(writer_); }
    XmlBuilder(const XmlBuilder&) = delete;
    XmlBuilder& operator=(const XmlBuilder&) = delete;

    void open();
    void close();
    void list(const char* name);
    void endList() { end(); }
    void resource(const char* name, const char* id);
    void endResource() { end(); }
    void property(const char* code, const char* label, const char* value);

private:
    void start(const char* element);
    void attribute(const char* name, const char* value);
    void text(const char* value); ///< with what XML needs escaped
    void raw(const char* value);
    void end(); ///< of the innermost element, and of its line

    xmlTextWriterPtr writer_;
};

} // namespace bench
