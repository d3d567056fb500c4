#pragma once
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace quillane {

/// Windows by name: each exists once, is made on first use, and is destroyed with all others
/// before the application object goes, in the reverse order of loading. browser fills it; a
/// window that opens another across the layers asks here.
class WindowRegistry {
public:
    using Maker = std::function<QObject*()>;
    /// Tells how the window of that name is made. A name may be told once; Failure
    /// kFailureGeneral for the second time.
    void Register(const QString& name, Maker make);
    bool Knows(const QString& name) const;
    /// The window, made if it is not there; nullptr for an unknown name, while that very window
    /// is being made, and during DestroyAll.
    QObject* Get(const QString& name);
    /// The window if it has been made and still lives.
    QObject* Loaded(const QString& name) const;
    /// Names of living windows in the order of their loading.
    QVector<QString> LoadedNames() const;
    /// Destroys every window without asking it.
    void DestroyAll();
    ~WindowRegistry() { DestroyAll(); }

private:
    std::map<QString, Maker> mMakers;
    std::vector<std::pair<QString, QPointer<QObject>>> mLoaded;
    std::set<QString> mBeingMade;
    bool mDestroying = false;
};

} // namespace quillane
