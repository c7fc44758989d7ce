import QtQml 2.15
import com.xolasys.ixolatreemodel 1.0

// Misuses the module on purpose: qmllint must tell from the type information
// that none of these exist.
QtObject {
    property IXOLATreeModel model: IXOLATreeModel {}
    property int rule: IXOLATreeModel.NoSuchRule
    property int rows: model.NoSuchCount
    Component.onCompleted: model.NoSuchCall()
}
