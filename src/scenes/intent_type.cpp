#include "scenes/intent_type.h"

#include <utility>

namespace tavrelon::scenes {

QString displayName(IntentType intent) {
    switch (intent) {
        case IntentType::rewrite:
            return QStringLiteral("改写");
        case IntentType::polish:
            return QStringLiteral("润色");
        case IntentType::expand:
            return QStringLiteral("扩写");
        case IntentType::continue_:
            return QStringLiteral("续写");
        case IntentType::summarize:
            return QStringLiteral("总结");
        case IntentType::translate:
            return QStringLiteral("翻译");
        case IntentType::reply:
            return QStringLiteral("回复");
        case IntentType::draw:
            return QStringLiteral("画图");
        case IntentType::image:
            return QStringLiteral("生成图片");
        case IntentType::extract:
            return QStringLiteral("提取");
        case IntentType::code:
            return QStringLiteral("代码");
        case IntentType::explain:
            return QStringLiteral("解释");
    }
    std::unreachable();
}

}  // namespace tavrelon::scenes
