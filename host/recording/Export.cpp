#include "host/recording/Export.h"

#include "explain/text/Escape.h"
#include "host/ExitCode.h"
#include "host/recording/Progress.h"
#include "host/recording/RecordText.h"
#include "monitor/mcap/read/Reader.h"
#include "monitor/mcap/write/GrowingFile.h"
#include "trovio/routing/Pattern.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <set>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace Host {

using namespace Monitor::Mcap;
using Monitor::Bytes;

namespace {

/// Goes through a recording and hands on the channels whose topic fits a pattern.
class Picked : public Visitor {
public:
    explicit Picked(const Options& options)
        : _pattern(options._slots),
          _progress("exporting", !options._output.empty() || isatty(STDOUT_FILENO) == 0) // else it would be in the way
    {
    }

    void channel(const Channel& channel) final
    {
        if (!_pattern.match(channel._topic))
            return;
        _picked.insert(channel._id);
        take(channel);
    }
    void message(const Message& message) final
    {
        if (_picked.contains(message._channel))
            take(message);
    }
    bool goOn(std::uint64_t read, std::uint64_t size) override
    {
        _progress.show(read, size);
        return true;
    }
    bool empty() const { return _picked.empty(); }

    virtual void take(const Channel& channel) = 0;
    virtual void take(const Message& message) = 0;
    virtual void end() = 0;

private:
    const Trovio::Pattern _pattern;
    std::set<std::uint16_t> _picked;
    Progress _progress;
};

[[noreturn]] void refuse(const std::string& path, const std::string& why)
{
    throw std::runtime_error(Explain::inQuotes(path) + " cannot be written: " + why);
}

/// Lines of text, to a file that does not exist yet or to standard output.
class TextExport final : public Picked {
public:
    TextExport(const Options& options, std::unique_ptr<RecordText> text)
        : Picked(options),
          _path(options._output),
          _text(std::move(text)),
          _file(_path.empty() ? stdout : std::fopen(_path.c_str(), "wx"))
    {
        if (!_file)
            refuse(_path, std::generic_category().message(errno));
        put(_text->head());
    }
    ~TextExport() override
    {
        if (_file && _file != stdout)
            std::fclose(_file);
    }
    TextExport(const TextExport&) = delete;
    TextExport& operator=(const TextExport&) = delete;

    void schema(const Schema& schema) override { _text->add(schema); }
    void take(const Channel& channel) override { _text->add(channel); }
    void take(const Message& message) override { put(_text->line(message)); }
    void end() override
    {
        if (std::fflush(_file) != 0)
            fail();
        if (_text->unknown() > 0)
            std::fprintf(stderr, "left out, for their bytes are no value that is known: messages %llu (%s)\n",
                         static_cast<unsigned long long>(_text->unknown()), _text->whyUnknown().c_str());
    }

private:
    void put(const std::string& text)
    {
        if (std::fwrite(text.data(), 1, text.size(), _file) != text.size())
            fail();
    }
    [[noreturn]] void fail()
    {
        refuse(_path.empty() ? "standard output" : _path, std::generic_category().message(errno));
    }

    const std::string _path;
    const std::unique_ptr<RecordText> _text;
    std::FILE* const _file;
};

/// Another recording, in chunks of its own, so it has the indexes that the first one may lack.
class McapExport final : public Picked {
public:
    explicit McapExport(const Options& options)
        : Picked(options),
          _path(options._output),
          _file(OutputFile::create(_path),
                options._zstd ? GrowingFile::Compression::Zstd : GrowingFile::Compression::None)
    {
    }

    void header(std::string_view, std::string_view library) override { require(_file.begin(library)); }
    void schema(const Schema& schema) override { _chunk.add(schema); }
    void take(const Channel& channel) override { _chunk.add(channel); }
    void take(const Message& message) override
    {
        _chunk.add(message);
        if (_chunk.size() >= chunkSize)
            flush();
    }
    void attachment(const Attachment& attachment, std::uint64_t, std::uint64_t) override
    {
        require(_file.add(attachment));
    }
    void metadata(const Metadata& metadata, std::uint64_t, std::uint64_t) override { require(_file.add(metadata)); }
    void end() override
    {
        flush();
        require(_file.close());
    }

private:
    static constexpr std::size_t chunkSize = 4UL * 1024 * 1024;

    void flush()
    {
        if (_chunk.empty())
            return;
        require(_file.add(_chunk));
    }
    void require(std::error_code error) const
    {
        if (error)
            refuse(_path, error.message());
    }

    const std::string _path;
    GrowingFile _file;
    ChunkBuilder _chunk;
};

void requireMcap(InputFile& file, const std::string& path)
{
    Bytes begin(magic.size());
    if (file.size() < begin.size() || !file.read(0, begin) || asText(begin) != magic)
        throw std::runtime_error(Explain::inQuotes(path) + " is no recording: it does not begin as MCAP");
}

std::unique_ptr<Picked> makeExport(const Options& options)
{
    if (options._format == Format::Mcap)
        return std::make_unique<McapExport>(options);
    return std::make_unique<TextExport>(options, options._format == Format::Csv ? makeCsv() : makeJsonLines());
}
} // namespace

int exportRecording(const Options& options)
{
    const auto input = InputFile::open(options._names.front());
    requireMcap(*input, options._names.front()); // before a file is made for it
    const std::unique_ptr<Picked> target = makeExport(options);
    const FileState state = Reader(*input, *target).read();
    target->end();
    if (state._verdict == FileState::Verdict::Damaged) {
        std::fprintf(stderr, "%s: %s; all that can be read was exported\n",
                     Explain::escaped(options._names.front()).c_str(), state._problem.c_str());
        return Failed;
    }
    if (target->empty() && options._slots != "*") {
        std::fprintf(stderr, "no slot of the recording fits %s; 'recording info' lists them\n",
                     Explain::inQuotes(options._slots).c_str());
        return NothingFound;
    }
    return Done;
}
} // namespace Host
