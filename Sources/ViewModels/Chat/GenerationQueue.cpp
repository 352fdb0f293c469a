#include "Chat/GenerationQueue.h"

#include <algorithm>

namespace Korvi {

namespace {

template <class Iterator, class Predicate>
Generation* findIn(Iterator begin, Iterator end, Predicate predicate) {
    const auto it = std::find_if(begin, end, predicate);
    return it == end ? nullptr : &*it;
}

template <class Predicate>
Generation* findFirst(std::list<Generation>& generations, Predicate predicate) {
    return findIn(generations.begin(), generations.end(), predicate);
}

template <class Predicate>
Generation* findNewest(std::list<Generation>& generations, Predicate predicate) {
    return findIn(generations.rbegin(), generations.rend(), predicate);
}

void forgo(Generation& generation, Generation::State state) {
    generation.state = state;
    if (!generation.isWaiting())
        generation.stage = Generation::Stage::heard;
    generation.isForgotten = true;
    generation.isOpen = false;
    generation.parked.clear();
}

}

Generation& GenerationQueue::begin(Generation generation) {
    generation.serial = ++m_lastSerial;
    return m_generations.emplace_back(std::move(generation));
}

Generation* GenerationQueue::find(quint64 serial) {
    return findFirst(m_generations, [serial](const Generation& generation) { return generation.serial == serial; });
}

Generation* GenerationQueue::current() {
    return findFirst(m_generations, [](const Generation& generation) { return generation.hasLeft(); });
}

Generation* GenerationQueue::open() {
    return findNewest(m_generations, [](const Generation& generation) { return generation.isOpen; });
}

Generation* GenerationQueue::runningOf(qint64 chatId) {
    return findNewest(m_generations, [chatId](const Generation& generation) {
        return generation.chatId == chatId && generation.state != Generation::State::stopped;
    });
}

Generation* GenerationQueue::firstOf(qint64 chatId) {
    return findFirst(m_generations, [chatId](const Generation& generation) { return generation.chatId == chatId; });
}

Generation* GenerationQueue::withoutChat() {
    return findFirst(
        m_generations, [](const Generation& generation) { return generation.hasLeft() && generation.chatId < 0; });
}

void GenerationQueue::remove(const Generation* generation) {
    std::erase_if(m_generations, [generation](const Generation& each) { return &each == generation; });
}

void GenerationQueue::forgo(qint64 chatId) {
    for (Generation& generation : m_generations) {
        if (generation.chatId == chatId)
            Korvi::forgo(generation, Generation::State::stopped);
    }
}

void GenerationQueue::forgoAll() {
    for (Generation& generation : m_generations) {
        const auto stopped = generation.chatId > 0 ? Generation::State::stopped : Generation::State::stopRequested;
        Korvi::forgo(generation, generation.state == Generation::State::running ? stopped : generation.state);
    }
}

QSet<qint64> GenerationQueue::runningChats() const {
    QSet<qint64> chatIds;
    for (const Generation& generation : m_generations) {
        if (generation.state == Generation::State::running && generation.chatId > 0)
            chatIds.insert(generation.chatId);
    }
    return chatIds;
}

}
