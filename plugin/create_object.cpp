#include "plugin/opera.h"

/// The library's only exported function. The caller owns the controller.
extern "C" Q_DECL_EXPORT opera *create_object()
{
    return new opera(nullptr);
}
