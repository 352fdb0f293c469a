#pragma once

namespace Korvi {

enum class FileTypeCategory { image, document, code, video, audio, unsupported };

}
