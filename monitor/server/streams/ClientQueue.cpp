#include "monitor/server/streams/ClientQueue.h"

namespace Monitor {

void ClientQueue::put(OutMessage message)
{
    (message._records > 0 ? _recordBytes : _wordBytes) += message.cost();
    _waitingRecords += message._records;
    _waiting.push_back(std::move(message));
    if (_wake)
        _wake();
}

bool ClientQueue::putRecords(OutMessage message)
{
    if (_finished || !hasRoomFor(message.cost())) {
        drop(message._records);
        return false;
    }
    put(std::move(message));
    return true;
}

bool ClientQueue::putWords(std::string text)
{
    if (_finished || _wordBytes + text.size() + sizeof(OutMessage) > Room)
        return false;
    put({std::move(text), 0, false});
    return true;
}

void ClientQueue::finish()
{
    _finished = true;
    if (_wake)
        _wake();
}

void ClientQueue::sent()
{
    const OutMessage& message = _waiting.front();
    (message._records > 0 ? _recordBytes : _wordBytes) -= message.cost();
    _waitingRecords -= message._records;
    _sentRecords += message._records;
    _waiting.pop_front();
}
} // namespace Monitor
