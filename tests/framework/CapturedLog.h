#pragma once

#include "osg/Log.h"
#include <string>
#include <vector>

/// Collects the texts of the framework's messages instead of letting them be written.
class CapturedLog {
public:
    CapturedLog()
    {
        _before = exchange([this](const osg::LogRecord& record) { return keep(record); });
    }
    ~CapturedLog() { exchange(_before); }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    const std::vector<std::string>& texts() const { return _texts; }

private:
    static osg::Log::Hook exchange(osg::Log::Hook hook) { return osg::osgLogP->setHook(std::move(hook)); }

    bool keep(const osg::LogRecord& record)
    {
        if (std::string_view(record._module) == "Trovio")
            _texts.emplace_back(record._text);
        return false;
    }

    osg::Log::Hook _before;
    std::vector<std::string> _texts;
};
