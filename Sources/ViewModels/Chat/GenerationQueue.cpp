#include "Chat/GenerationQueue.h"

#include <algorithm>

namespace Korvi {

template <class Predicate>
Generation* GenerationQueue::find(Predicate predicate) {
    const auto it = std::find_if(m_generations.begin(), m_generations.end(), predicate);
    return it == m_generations.end() ? nullptr : &*it;
}

Generation& GenerationQueue::begin(qint64 chatId) {
    Generation generation;
    generation.chatId = chatId;
    return m_generations.emplace_back(std::move(generation));
}

Generation* GenerationQueue::current() {
    return m_generations.empty() ? nullptr : &m_generations.front();
}

Generation* GenerationQueue::open() {
    return find([](const Generation& generation) { return generation.isOpen; });
}

Generation* GenerationQueue::ofChat(qint64 chatId) {
    return find([chatId](const Generation& generation) { return generation.chatId == chatId; });
}

Generation* GenerationQueue::withoutChat() {
    return ofChat(-1);
}

void GenerationQueue::remove(const Generation* generation) {
    std::erase_if(m_generations, [generation](const Generation& each) { return &each == generation; });
}

}
