#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace termcore {

/// A ring of at most `maxLength` elements; pushing into a full one drops the first.
template <typename Element>
class CircularList {
public:
    explicit CircularList(std::size_t maxLength)
        : array(maxLength) {}

    std::size_t count() const { return length; }
    std::size_t maxLength() const { return array.size(); }
    Element& operator[](std::size_t index) { return array[(startIndex + index) % array.size()]; }
    const Element& operator[](std::size_t index) const { return array[(startIndex + index) % array.size()]; }

    void push(Element element) {
        if (array.empty())
            return;
        if (length == array.size()) {
            array[startIndex] = std::move(element);
            startIndex = (startIndex + 1) % array.size();
        } else {
            array[(startIndex + length++) % array.size()] = std::move(element);
        }
    }
    void pop() {
        if (length > 0)
            --length;
    }

private:
    std::vector<Element> array;
    std::size_t startIndex = 0;
    std::size_t length = 0;
};

}
