#include "metadata/gwExifValue.h"

int gwExifTypeSize(int type)
{
    static const int sizes[14] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    return (type >= 0 && type <= 13) ? sizes[type] : -1;
}
