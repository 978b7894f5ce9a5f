#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace qv {

// Starts the firmware loader, a separate program that takes the device over
// on its own. The tool neither waits for it nor looks at its outcome, and a
// loader that does not start is not the operator's business: the starter
// says nothing to the operator (the native one writes a diagnostic line).
class LoaderStarter {
public:
    virtual ~LoaderStarter() = default;
    // `commandLine` as loaderCommandLine() builds it.
    virtual void start(const QString& commandLine) = 0;
};

// The program and arguments that carry the loader's command line on this
// platform.
//
// The loader was a Windows program: it got the text after its name and
// split it at runs of blanks, with no quoting at all. The arguments here are
// that split, so a firmware path with a blank in it arrives in two pieces,
// exactly as it always has; the loader is expected to join them.
//
// In the application directory, first match wins:
//  1. LOADSTAGE_K_V318 (no extension), executable: a native loader.
//  2. LOADSTAGE_K_V318.exe that is a Windows program (it begins with "MZ"):
//     run through wine, when wine is on PATH.
//  3. LOADSTAGE_K_V318.exe that is executable and not a Windows program (a
//     script standing in for the loader): run directly.
struct LoaderInvocation {
    QString program;
    QStringList arguments;
};

struct LoaderPlan {
    std::optional<LoaderInvocation> invocation;
    QString problem; // why there is none, for the diagnostic line
};

// The text after the program name, split as the loader splits it. The
// program name is the application directory's loader path when the line
// begins with it (the directory may hold blanks), otherwise the first word.
QStringList loaderArguments(const QString& applicationDirectory, const QString& commandLine);

// `findExecutable` finds a program on PATH by name ("" when absent).
LoaderPlan planLoaderStart(const QString& applicationDirectory, const QString& commandLine,
                           const std::function<QString(const QString&)>& findExecutable);

// The starter of the running tool: plans as above, starts detached in the
// tool's working directory with its environment, and writes a line on
// standard error (or to `diagnostic`) when nothing could be started.
class NativeLoaderStarter : public LoaderStarter {
public:
    explicit NativeLoaderStarter(QString applicationDirectory,
                                 std::function<void(const QString&)> diagnostic = {});
    void start(const QString& commandLine) override;

private:
    QString applicationDirectory_;
    std::function<void(const QString&)> diagnostic_;
};

} // namespace qv
