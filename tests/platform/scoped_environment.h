#pragma once
#include <QByteArray>
#include <cstdlib>
#include <optional>

namespace quillane {

/// Sets or unsets an environment variable for the life of a scope.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const QByteArray& value) : ScopedEnvironment(name)
    {
        setenv(name, value.constData(), 1);
    }
    /// Unset.
    explicit ScopedEnvironment(const char* name) : mName(name)
    {
        if (const char* const before = getenv(name)) {
            mBefore = before;
        }
        unsetenv(name);
    }
    ~ScopedEnvironment()
    {
        if (mBefore) {
            setenv(mName, mBefore->constData(), 1);
        } else {
            unsetenv(mName);
        }
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    const char* mName;
    std::optional<QByteArray> mBefore;
};

} // namespace quillane
