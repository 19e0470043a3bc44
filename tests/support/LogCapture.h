#pragma once

#include "osg/Log.h"
#include <string>
#include <vector>

/// Records what is logged while it lives, at every level unless told otherwise, and keeps it from being written.
/// Holds nothing back, however much it is.
/// Threads: messages from any; made, read and destroyed on one. One at a time.
class LogCapture {
public:
    struct Entry {
        int _level;
        std::string _module;
        std::string _file;
        unsigned _line;
        std::string _function;
        std::string _text;
    };

    explicit LogCapture(int level = osg::LogDebug) : _levelBefore(osg::osgLogP->getLogLevel())
    {
        osg::osgLogP->setLogLevel(level);
        osg::osgLogP->limit().setRate(0);
        _hookBefore = osg::osgLogP->setHook([this](const osg::LogRecord& record) {
            _entries.push_back({record._level, record._module, record._file, record._line, record._function,
                                std::string(record._text)});
            return false;
        });
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture()
    {
        osg::osgLogP->setHook(std::move(_hookBefore));
        osg::osgLogP->setLogLevel(_levelBefore);
        osg::osgLogP->limit().setRate(_rateBefore);
    }

    std::vector<Entry> entries() const
    {
        osg::Log::_pLogLock->acquire();
        std::vector<Entry> result = _entries;
        osg::Log::_pLogLock->release();
        return result;
    }

    std::vector<std::string> texts() const
    {
        std::vector<std::string> result;
        for (const Entry& entry : entries())
            result.push_back(entry._text);
        return result;
    }

private:
    const int _levelBefore;
    const unsigned _rateBefore = osg::osgLogP->limit().rate();
    osg::Log::Hook _hookBefore;
    std::vector<Entry> _entries;
};
