#include "screen.h"

#include <ipodqml/session.h>

#include <QQmlEngine>
#include <stdexcept>

#include "icons.h"

namespace screen
{
void Load(QQuickView& view, const Options& options)
{
    if (!ipodqml::RunsInGLibLoop())
        throw std::runtime_error("Qt runs without GLib's event dispatcher\nhint: unset QT_NO_GLIB");
    view.engine()->addImportPath("qrc:/");
    view.engine()->addImageProvider("icon", new Icons);
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setTitle("ipod-screen");
    view.resize(options.size);
    view.setInitialProperties({{"page", options.page},
                               {"night", options.night},
                               {"knob", QVariantList{options.knob[0], options.knob[1], options.knob[2]}},
                               {"animated", options.animated}});
    view.setSource(QUrl("qrc:/IpodScreen/Main.qml"));
    if (view.status() != QQuickView::Ready) throw std::runtime_error(view.errors().value(0).toString().toStdString());
}
}  // namespace screen
