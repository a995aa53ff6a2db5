#pragma once

#include "settings/gwParamKeyList.h"

#include <QString>
#include <QStringList>

// Every unit that includes this header gets its own constants, made before
// any later static object of that unit: no order of initialisation between
// units can leave a key empty.
#define GW_DEFINE_PARAM_KEY(name, text) static const QString GgwParam_##name = QStringLiteral(text);
GW_PARAM_KEYS(GW_DEFINE_PARAM_KEY)
#undef GW_DEFINE_PARAM_KEY

// The whole vocabulary, in the order of its list.
QStringList gwAllParamKeys();
