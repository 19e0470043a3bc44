#include "monitor/mcap/write/Recording.h"

#include "base/QuietThread.h"
#include "explain/text/Escape.h"

#include <algorithm>
#include <stdexcept>

namespace Monitor::Mcap {

namespace {

constexpr std::size_t largeMessage = 64UL * 1024;           // bytes
constexpr auto lookInterval = std::chrono::milliseconds(5); // while the disk confirms what was written
} // namespace

Recording::Recording(std::string title, std::unique_ptr<OutputFile> file, std::string library,
                     const RecordingLimits& limits)
    : _title(std::move(title)),
      _outOfMemory(
          "recording " + Explain::inQuotes(_title) +
          " ended: out of memory; what the file holds can be read, and 'ostrel-host recording finish' gives it "
          "its end"),
      _limits(limits),
      _file(std::move(file)),
      _thread(Ostrel::quietThread("recording", [this, library = std::move(library)] { writeAll(library); }))
{
}

Recording::~Recording()
{
    finish();
}

std::uint16_t Recording::numberOf(const Schema& schema)
{
    if (schema._name.empty())
        return 0;
    Schema numbered = schema;
    for (const Schema& known : _schemas) {
        numbered._id = known._id;
        if (numbered == known)
            return known._id;
    }
    numbered._id = static_cast<std::uint16_t>(_schemas.size() + 1);
    _schemas.push_back(std::move(numbered));
    return _schemas.back()._id;
}

std::uint16_t Recording::addChannel(const std::string& topic, const std::string& encoding, const Schema& schema)
{
    if (_channels.size() >= maxChannels)
        throw std::length_error("a recording has at most 65,535 channels; record fewer slots");
    const auto id = static_cast<std::uint16_t>(_channels.size() + 1);
    _channels.push_back({{id, numberOf(schema), topic, encoding, {}}, 0});
    return id;
}

bool Recording::add(std::uint16_t channel, std::uint64_t logTime, std::uint64_t publishTime, ByteView data)
{
    if (data.size() > maxRecord / 2) // its chunk holds more
        return false;
    for (; _schemasWritten < _schemas.size(); ++_schemasWritten)
        _chunk.add(_schemas[_schemasWritten]);
    for (; _channelsWritten < _channels.size(); ++_channelsWritten)
        _chunk.add(_channels[_channelsWritten]._channel);
    Sequence& sequence = _channels[channel - 1U];
    _chunk.add(Message{channel, sequence._next++, logTime, publishTime, data});
    if (data.size() >= largeMessage)
        _chunk.sumUp(); // while the processor still has it in its cache, and not on the thread that waits for the disk
    if (_chunk.size() >= _limits._chunk)
        flush();
    return true;
}

void Recording::flush()
{
    if (_chunk.empty())
        return;
    const std::size_t size = _chunk.size();
    ChunkBuilder full = takeSpare();
    // For the next one, which will be about as large: with what went beyond the limit, else it moves in memory.
    full.reserve(std::min(size, 2 * _limits._chunk), _chunk.messages());
    std::swap(full, _chunk);
    auto write = [this, chunk = std::move(full)](GrowingFile& file) mutable {
        const std::error_code error = file.add(chunk);
        keepSpare(std::move(chunk));
        return error;
    };
    hand({std::move(write), size});
}

ChunkBuilder Recording::takeSpare()
{
    const Ostrel::LockGuard guard(_lock);
    if (_spares.empty())
        return {};
    ChunkBuilder chunk = std::move(_spares.back());
    _spares.pop_back();
    _spareBytes -= chunk.capacity();
    return chunk;
}

void Recording::keepSpare(ChunkBuilder&& chunk)
{
    const Ostrel::LockGuard guard(_lock);
    const std::size_t bytes = _spareBytes + chunk.capacity();
    if (bytes > _limits._spare)
        return;
    try {
        _spares.push_back(std::move(chunk));
        _spareBytes = bytes;
    } catch (const std::bad_alloc&) {
        return; // it is written, and only its memory goes
    }
}

void Recording::attach(const std::string& name, const std::string& mediaType, std::string_view data, std::uint64_t time)
{
    const auto write = [=, bytes = std::string(data)](GrowingFile& file) {
        return file.add(Attachment{time, time, name, mediaType, asBytes(bytes)});
    };
    hand({write, data.size()});
}

void Recording::note(Metadata metadata)
{
    hand({[metadata = std::move(metadata)](GrowingFile& file) { return file.add(metadata); }, 0});
}

void Recording::hand(Job&& job)
{
    const Ostrel::LockGuard guard(_lock);
    if (!_status._problem.empty())
        return;
    _status._waiting += job._bytes;
    _jobs.push_back(std::move(job));
    _changed.notify_all();
}

bool Recording::hasRoom() const
{
    const Ostrel::LockGuard guard(_lock);
    return _status._waiting < _limits._waiting;
}

void Recording::waitForRoom()
{
    const Ostrel::LockGuard guard(_lock);
    while (_status._waiting >= _limits._waiting)
        _changed.wait(_lock);
}

RecordingStatus Recording::status() const
{
    const Ostrel::LockGuard guard(_lock);
    return _status;
}

// What is written meanwhile was not handed over in vain when the program is killed, so it does not wait for the disk.
bool Recording::waitForJob(bool isAllConfirmed)
{
    const Ostrel::LockGuard guard(_lock);
    if (isAllConfirmed)
        while (_jobs.empty() && !_ending)
            _changed.wait(_lock);
    else if (_jobs.empty() && !_ending)
        _changed.wait_for(_lock, lookInterval);
    return !_jobs.empty() || _ending;
}

std::optional<Recording::Job> Recording::nextJob()
{
    while (!waitForJob(_file.isConfirmed()))
        attempt([](GrowingFile& file) { return file.confirmWhatIsThere(); });
    const Ostrel::LockGuard guard(_lock);
    if (_jobs.empty())
        return std::nullopt;
    Job job = std::move(_jobs.front());
    _jobs.pop_front();
    return job;
}

// The thread. Where there was no memory nobody knows how far a job came: nothing more is written, so that what stands
// in the file can be read, and what waits is let go.
void Recording::writeAll(const std::string& library)
{
    bool goesOn = attempt([&](GrowingFile& file) { return file.begin(library); });
    while (auto job = nextJob()) {
        goesOn = goesOn && attempt(job->_do);
        letGo(job->_bytes);
    }
    attempt([goesOn](GrowingFile& file) { return goesOn ? file.close() : file.confirm(); });
}

void Recording::letGo(std::size_t bytes)
{
    const Ostrel::LockGuard guard(_lock);
    _status._waiting -= bytes;
    _changed.notify_all();
}

bool Recording::attempt(const std::function<std::error_code(GrowingFile&)>& action)
{
    try {
        told(action(_file));
        return true;
    } catch (const std::exception&) {
        const Ostrel::LockGuard guard(_lock);
        if (_status._problem.empty())
            _status._problem.swap(_outOfMemory);
        return false;
    }
}

void Recording::told(std::error_code error)
{
    const std::uint64_t room = _file.room();
    const Ostrel::LockGuard guard(_lock);
    _status._messages = _file.messages();
    _status._size = _file.size();
    _status._room = room;
    if (error && _status._problem.empty())
        _status._problem = "recording " + Explain::inQuotes(_title) + " ended: " + error.message() + " at byte " +
                           std::to_string(_file.size()) + "; the " + std::to_string(_file.messages()) +
                           " messages before are kept; " +
                           (error == std::errc::no_space_on_device || error == std::errc::file_too_large
                                ? "make room, or record to another disk"
                                : "look after the disk, or record to another one");
}

std::string Recording::finish()
{
    flush();
    {
        const Ostrel::LockGuard guard(_lock);
        _ending = true;
        _changed.notify_all();
    }
    if (_thread.joinable())
        _thread.join();
    return status()._problem;
}
} // namespace Monitor::Mcap
