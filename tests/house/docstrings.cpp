// CheckDocstrings: walks the declarations of a header.
#include "house/rules.h"
#include <QRegularExpression>

namespace quillane::house {

namespace {

enum class Scope { Namespace, Class, Inner };

struct OpenScope {
    Scope kind;
    QString className;
    bool isPrivate = false;
};

class DocstringWalk {
public:
    explicit DocstringWalk(const SourceFile& file)
        : mFile(file),
          mLines(file.text.split(u'\n')),
          mCode(CodeOf(file.text))
    {
        BlankDirectives();
        mScopes.push_back({Scope::Namespace, {}, false});
    }

    QStringList Run()
    {
        for (mAt = 0; mAt < mCode.size(); ++mAt) {
            const QChar unit = mCode[mAt];
            if (mParentheses == 0 && unit == u'{')
                Open();
            else if (mParentheses == 0 && unit == u'}')
                Close();
            else if (mParentheses == 0 && unit == u';')
                EndStatement(false);
            else if (mParentheses == 0 && unit == u':' && ChangeAccess())
                mStatement.clear();
            else
                Append(unit);
            if (unit == u'\n')
                ++mLine;
        }
        return mComplaints;
    }

private:
    // Directives and macros without a semicolon are no part of any declaration.
    void BlankDirectives()
    {
        static const QRegularExpression kDirective(
            QStringLiteral("^[ \\t]*#(?:[^\\n\\\\]|\\\\\\n|\\\\)*"),
            QRegularExpression::MultilineOption);
        static const QRegularExpression kMacro(
            QStringLiteral("\\bQ_(OBJECT|GADGET|NAMESPACE|DISABLE_COPY\\w*\\([^)]*\\)"
                           "|(PROPERTY|ENUM|INTERFACES)\\s*\\([^)]*\\))(?!\\w)"));
        for (const QRegularExpression& pattern : {kDirective, kMacro}) {
            for (auto matches = pattern.globalMatch(mCode); matches.hasNext();) {
                const auto match = matches.next();
                for (qsizetype i = match.capturedStart(); i < match.capturedEnd(); ++i) {
                    if (mCode[i] != u'\n')
                        mCode[i] = u' ';
                }
            }
        }
    }

    void Append(QChar unit)
    {
        if (mStatement.isEmpty()) {
            if (unit.isSpace())
                return;
            mStartLine = mLine;
        }
        mParentheses += unit == u'(' ? 1 : unit == u')' ? -1 : 0;
        mStatement += unit.isSpace() ? u' ' : unit;
    }

    bool ChangeAccess()
    {
        static const QRegularExpression kAccess(
            QStringLiteral("^(public|protected|private|Q_SIGNALS)( Q_SLOTS)?$"));
        const auto match = kAccess.match(mStatement.trimmed());
        if (mScopes.back().kind != Scope::Class || !match.hasMatch())
            return false;
        mScopes.back().isPrivate = match.captured(1) == QLatin1String("private");
        return true;
    }

    void Open()
    {
        static const QRegularExpression kNamespace(
            QStringLiteral("^(inline )?namespace\\b|^extern\\b[^()]*$"));
        static const QRegularExpression kClass(
            QStringLiteral("^(?:template ?<.*> ?)?(class|struct|union)\\b[^(=]*?(\\w+)"
                           "( final)?\\s*(:.*)?$"));
        const QString statement = mStatement.trimmed();
        const bool hidden = mScopes.back().kind == Scope::Inner || mScopes.back().isPrivate;
        const auto asClass = kClass.match(statement);
        if (kNamespace.match(statement).hasMatch()) {
            mScopes.push_back({Scope::Namespace, {}, hidden});
        } else if (asClass.hasMatch()) {
            const bool isClass = asClass.captured(1) == QLatin1String("class");
            // What a private class holds is private as a whole.
            if (hidden)
                mScopes.push_back({Scope::Inner, {}, true});
            else
                mScopes.push_back({Scope::Class, asClass.captured(2), isClass});
        } else {
            EndStatement(true);
            mScopes.push_back({Scope::Inner, {}, true});
            return;
        }
        mStatement.clear();
    }

    void Close()
    {
        if (mScopes.size() > 1)
            mScopes.pop_back();
        mStatement.clear();
        mLastEndLine = mLine;
        mLastDocumented = mLastDocumented && mBodyOfLast;
        mBodyOfLast = false;
    }

    // The name of the function that a statement declares; empty when it declares none.
    static QString FunctionName(const QString& statement)
    {
        static const QRegularExpression kNone(
            QStringLiteral("^(using|typedef|friend|static_assert|enum|extern template)\\b"
                           "|\\boperator\\b|= ?(default|delete|0) ?$"));
        const bool pure = statement.endsWith(QLatin1String("= 0"));
        if (!pure && kNone.match(statement).hasMatch())
            return {};
        int angles = 0;
        for (qsizetype at = 0; at < statement.size(); ++at) {
            const QChar unit = statement[at];
            if (unit == u'<')
                ++angles;
            else if (unit == u'>')
                --angles;
            else if (angles == 0 && unit == u'=')
                return {};
            else if (angles == 0 && unit == u'(') {
                static const QRegularExpression kName(QStringLiteral("(~?\\w+) ?$"));
                return kName.match(statement.first(at)).captured(1);
            }
        }
        return {};
    }

    void EndStatement(bool hasBody)
    {
        const QString statement = mStatement.trimmed();
        mStatement.clear();
        if (statement.isEmpty())
            return;
        const bool documented = IsDocumented();
        const OpenScope& scope = mScopes.back();
        const QString name = FunctionName(statement);
        static const QRegularExpression kOverride(QStringLiteral("\\b(override|final)\\b"));
        const bool free = name.isEmpty() || scope.kind == Scope::Inner || scope.isPrivate
            || name == scope.className || name.startsWith(u'~')
            || kOverride.match(statement).hasMatch()
            || (hasBody && mLine == mStartLine && mLines[mLine].contains(u'}'));
        if (!free && !documented)
            mComplaints.append(QStringLiteral("%1:%2: %3 has no docstring")
                                   .arg(mFile.path)
                                   .arg(mStartLine + 1)
                                   .arg(name));
        mLastEndLine = mLine;
        mLastDocumented = documented;
        mBodyOfLast = hasBody;
    }

    // "///" on one of its lines or right above, or the same of the declaration right above.
    bool IsDocumented() const
    {
        for (int line = mStartLine; line <= mLine; ++line) {
            if (mLines[line].contains(QLatin1String("///")))
                return true;
        }
        if (mStartLine == 0)
            return false;
        const QString above = mLines[mStartLine - 1].trimmed();
        return above.startsWith(QLatin1String("///"))
            || (mLastDocumented && mLastEndLine == mStartLine - 1);
    }

    const SourceFile& mFile;
    QStringList mLines;
    QString mCode;
    std::vector<OpenScope> mScopes;
    QString mStatement;
    QStringList mComplaints;
    qsizetype mAt = 0;
    int mLine = 0; ///< from 0
    int mStartLine = 0;
    int mParentheses = 0;
    int mLastEndLine = -1;
    bool mLastDocumented = false;
    bool mBodyOfLast = false;
};

} // namespace

QStringList CheckDocstrings(const SourceFile& file)
{
    if (!file.IsProduct() || !file.IsHeader())
        return {};
    return DocstringWalk(file).Run();
}

} // namespace quillane::house
