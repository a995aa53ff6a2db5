#include "settings/gwParamKeys.h"

QStringList gwAllParamKeys()
{
    QStringList keys;
    keys.reserve(kGwParamKeyCount);
#define GW_LIST_PARAM_KEY(name, text) keys.append(QStringLiteral(text));
    GW_PARAM_KEYS(GW_LIST_PARAM_KEY)
#undef GW_LIST_PARAM_KEY
    return keys;
}
