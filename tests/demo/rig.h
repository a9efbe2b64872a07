#pragma once

#include "options.h"
#include "unit.h"

#include <longestwait.h>

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLoggingCategory>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

/// The head unit in a window, on a simulated box with a car that stands, and what the box reports.
class Rig : public QObject {
public:
    /// @return whether the link is up and everything has arrived
    bool start()
    {
        canbus::headunit::Options options;
        options.simulates = true;
        options.parks = true;
        if (!begin(options))
            return false;
        connect(unit->box(), &canbus::headunit::SimulatedBox::reported, this,
                [this](const QByteArray &json) { reports.append(QJsonDocument::fromJson(json).object()); });
        return QTest::qWaitFor([this] { return screen()->property("filled").toBool(); }, kLongestWaitMs);
    }

    /// Shows the head unit. @return whether it could begin
    bool begin(const canbus::headunit::Options &options)
    {
        QLoggingCategory::setFilterRules(QStringLiteral("default.critical=false\ndefault.debug=false"));
        unit = std::make_unique<canbus::headunit::Unit>(options);
        QString error;
        if (!unit->start(&error)) {
            qCritical() << error;
            return false;
        }
        window.resize(1024, 600);
        unit->showIn(&window);
        window.show();
        window.requestActivate();
        return isDrawn();
    }

    ~Rig() override
    {
        if (unit)
            screen()->setParentItem(nullptr);
    }

    QQuickItem *screen() const { return unit->screen(); }
    QString page() const { return screen()->property("page").toString(); }
    void send(const QString &line) const { unit->box()->send(line); }

    /// The page that is shown.
    QQuickItem *pageItem() const
    {
        return screen()
            ->findChild<QQuickItem *>(QStringLiteral("pageLoader"))
            ->property("item")
            .value<QQuickItem *>();
    }

    /// An item by its name, below another.
    static QQuickItem *findIn(QQuickItem *item, const QString &name)
    {
        const QList<QQuickItem *> children = item->childItems();
        for (QQuickItem *child : children) {
            if (child->objectName() == name)
                return child;
            if (QQuickItem *const found = findIn(child, name))
                return found;
        }
        return nullptr;
    }

    /// An item by the names on the way to it: "main/plus".
    QQuickItem *find(const QString &path) const
    {
        QQuickItem *item = screen();
        const QStringList names = path.split('/');
        for (const QString &name : names)
            item = item ? findIn(item, name) : nullptr;
        return item;
    }

    static QPoint pointOf(const QQuickItem *item, double x = 0.5, double y = 0.5)
    {
        return item->mapToScene({item->width() * x, item->height() * y}).toPoint();
    }

    void press(const QString &path) { QTest::mousePress(&window, Qt::LeftButton, {}, pointOf(find(path))); }
    void release(const QString &path)
    {
        QTest::mouseRelease(&window, Qt::LeftButton, {}, pointOf(find(path)));
    }

    void click(const QString &path)
    {
        press(path);
        release(path);
    }

    /// Opens a page, and waits until it is drawn: before that, its controls are not in their places.
    bool open(const QString &page)
    {
        if (this->page() == page)
            return true;
        click(page + QStringLiteral("Tab"));
        return isDrawn() && this->page() == page;
    }

    /// Draws the window. @return whether that came about
    bool isDrawn()
    {
        QSignalSpy frames(&window, &QQuickWindow::frameSwapped);
        window.update();
        return frames.wait(kLongestWaitMs);
    }

    /// How often the box has got the command, with at least these arguments; retransmissions do not count.
    int count(const QString &command, const QJsonObject &arguments = {}) const
    {
        int found = 0;
        for (const QJsonObject &report : reports)
            found += isIt(report, command, arguments) ? 1 : 0;
        return found;
    }

    std::unique_ptr<canbus::headunit::Unit> unit;
    QQuickWindow window;
    QVector<QJsonObject> reports;

private:
    static bool isIt(const QJsonObject &report, const QString &command, const QJsonObject &arguments)
    {
        if (report["name"] != command || report["repeated"].toBool())
            return false;
        for (auto it = arguments.begin(); it != arguments.end(); ++it) {
            if (report[it.key()] != it.value())
                return false;
        }
        return true;
    }
};
