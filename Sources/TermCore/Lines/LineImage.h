#pragma once

#include <memory>
#include <vector>

namespace termcore {

/// An image attached to a line. The image protocols derive their own records from it.
struct LineImage {
    virtual ~LineImage() = default;
};

using LineImages = std::vector<std::shared_ptr<LineImage>>;

}
