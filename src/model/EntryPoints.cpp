#include "XOLATreeModel.h"

#include <new>

extern "C" {

bool CreateXOLATreeModel(IXOLATreeModel** model, QObject* parent, const QHash<int, QByteArray>& roleNames, int flags,
                         PF_COPY_ITEM copyItemFunc, PF_MATCH_ITEM matchItemFunc)
{
    if (!model)
        return false;
    try {
        *model = new XOLATreeModel(parent, roleNames, flags, std::move(copyItemFunc), std::move(matchItemFunc));
        return true;
    } catch (...) {
        // Nothing leaves the library as an exception; new releases the memory itself.
        return false;
    }
}

bool DeleteXOLATreeModel(IXOLATreeModel** model)
{
    if (!model || !*model)
        return false;
    delete *model;
    *model = nullptr;
    return true;
}

} // extern "C"
