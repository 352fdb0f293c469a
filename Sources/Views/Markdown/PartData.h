#pragma once

#include "MessageContent.h"
#include "PartKinds.h"
#include "Pipeline/Segment.h"

#include <QVariant>

#include <optional>

namespace Korvi {

// As what a block of a message is drawn; absent when it is not, or elsewhere.
std::optional<AnswerPartKind> partKind(const MessageContent& block);
AnswerPartKind partKind(const Markdown::Segment& segment);

// What a view is told of it, see AnswerParts::Role.
QVariant partData(const MessageContent& block, int role);
QVariant partData(const Markdown::Block& block, int role);

}
