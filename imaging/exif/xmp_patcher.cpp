#include "imaging/exif/xmp_patcher.h"
#include <QHash>
#include <algorithm>
#include <utility>
#include <vector>

namespace quillane {

namespace {

constexpr char kXmpRdf[] = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
constexpr char kXmpDc[] = "http://purl.org/dc/elements/1.1/";
constexpr char kXmpTiff[] = "http://ns.adobe.com/tiff/1.0/";

constexpr size_t kXmpMostElements = 50'000;
constexpr size_t kXmpMostEdits = 16;

struct XmpAttribute {
    QByteArray name;
    qsizetype from, to;           ///< with the blanks before it
    qsizetype valueFrom, valueTo; ///< between the quotes
};

struct XmpElement {
    QByteArray name;
    qsizetype from, to;     ///< from its first to behind its last character
    qsizetype inner, outer; ///< what it holds
    bool closed = false;    ///< it was closed, by its own tag or at once
    bool empty = false;     ///< "<x/>"
    int parent = -1;
    std::vector<XmpAttribute> attributes;
};

bool XmpIsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// The elements of a packet with their places. What is no well-formed XML is passed over.
class XmpScan {
public:
    explicit XmpScan(const QByteArray& text) : mText(text) { Run(); }
    const std::vector<XmpElement>& Elements() const { return mElements; }

    bool Is(const QByteArray& name, const char* space, const char* local) const
    {
        const qsizetype colon = name.indexOf(':');
        return colon > 0 && name.sliced(colon + 1) == local
            && mSpaces.value(name.left(colon)) == space;
    }
    /// Whether an element is one of the packet's own descriptions, none within a property.
    bool IsDescription(int element) const
    {
        return element >= 0 && Is(mElements[size_t(element)].name, kXmpRdf, "Description")
            && mElements[size_t(element)].parent >= 0
            && Is(mElements[size_t(mElements[size_t(element)].parent)].name, kXmpRdf, "RDF");
    }

private:
    void Run()
    {
        qsizetype at = 0;
        while ((at = mText.indexOf('<', at)) >= 0) {
            if (Skipped(at, "<!--", "-->") || Skipped(at, "<?", "?>")
                || Skipped(at, "<![CDATA[", "]]>")) {
                continue;
            }
            const qsizetype end = TagEnd(at);
            if (end < 0) {
                return;
            }
            if (mElements.size() >= kXmpMostElements) {
                return;
            }
            if (mText[at + 1] == '/') {
                Close(mText.sliced(at + 2, end - at - 3).trimmed(), at, end);
            } else {
                OpenElement(at, end);
            }
            at = end;
        }
    }

    bool Skipped(qsizetype& at, const char* start, const char* stop) const
    {
        if (!QByteArrayView(mText).sliced(at).startsWith(start)) {
            return false;
        }
        const qsizetype found = mText.indexOf(stop, at);
        at = found < 0 ? mText.size() : found + qsizetype(qstrlen(stop));
        return true;
    }

    /// Behind the ">" of the tag that begins here; -1 when it never ends.
    qsizetype TagEnd(qsizetype at) const
    {
        char quote = 0;
        for (qsizetype i = at + 1; i < mText.size(); ++i) {
            const char c = mText[i];
            if (quote) {
                quote = c == quote ? 0 : quote;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '>') {
                return i + 1;
            }
        }
        return -1;
    }

    void OpenElement(qsizetype at, qsizetype end)
    {
        XmpElement element;
        qsizetype i = at + 1;
        while (i < end && !XmpIsBlank(mText[i]) && mText[i] != '>' && mText[i] != '/') {
            ++i;
        }
        element.name = mText.sliced(at + 1, i - at - 1);
        element.from = at;
        element.to = element.inner = element.outer = end;
        element.parent = mOpen.empty() ? -1 : mOpen.back();
        element.empty = element.closed = mText[end - 2] == '/';
        ReadAttributes(i, end, element);
        if (!element.empty) {
            mOpen.push_back(int(mElements.size()));
        }
        mElements.push_back(std::move(element));
    }

    void ReadAttributes(qsizetype at, qsizetype end, XmpElement& element)
    {
        while (at < end) {
            const QByteArrayView tag = QByteArrayView(mText).first(end);
            const qsizetype equals = tag.indexOf('=', at);
            if (equals < 0) {
                return;
            }
            qsizetype open = equals + 1;
            while (open < end && XmpIsBlank(mText[open])) {
                ++open;
            }
            const qsizetype close = open < end ? tag.indexOf(mText[open], open + 1) : -1;
            if (close < 0 || (mText[open] != '"' && mText[open] != '\'')) {
                return;
            }
            const QByteArray name = mText.sliced(at, equals - at).trimmed();
            element.attributes.push_back({name, at, close + 1, open + 1, close});
            if (name.startsWith("xmlns:")) {
                mSpaces.insert(name.sliced(6), mText.sliced(open + 1, close - open - 1));
            }
            at = close + 1;
        }
    }

    void Close(const QByteArray& name, qsizetype at, qsizetype end)
    {
        if (mOpen.empty() || mElements[size_t(mOpen.back())].name != name) {
            return;
        }
        XmpElement& element = mElements[size_t(mOpen.back())];
        element.outer = at;
        element.to = end;
        element.closed = true;
        mOpen.pop_back();
    }

    const QByteArray& mText;
    std::vector<XmpElement> mElements;
    std::vector<int> mOpen;
    QHash<QByteArray, QByteArray> mSpaces;
};

QString XmpUnescaped(const QByteArray& bytes)
{
    const QString text = QString::fromUtf8(bytes);
    QString plain;
    plain.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool named = text[i] == u'&';
        const qsizetype length = named ? QStringView(text).sliced(i).left(11).indexOf(u';') : -1;
        if (length < 0) {
            plain += text[i];
            continue;
        }
        const qsizetype end = i + length;
        const QStringView name = QStringView(text).sliced(i + 1, end - i - 1);
        const bool hex = name.startsWith(u"#x");
        const uint code = name.startsWith(u'#')
            ? name.sliced(hex ? 2 : 1).toUInt(nullptr, hex ? 16 : 10)
            : name == u"amp"  ? u'&'
            : name == u"lt"   ? u'<'
            : name == u"gt"   ? u'>'
            : name == u"quot" ? u'"'
            : name == u"apos" ? u'\''
                              : 0;
        if (code == 0 || code > 0x10ffff) {
            plain += text[i];
            continue;
        }
        plain += QString::fromUcs4(reinterpret_cast<const char32_t*>(&code), 1);
        i = end;
    }
    return plain;
}

QByteArray XmpEscaped(const QString& text)
{
    QString escaped;
    escaped.reserve(text.size());
    for (const QChar c : text) {
        switch (c.unicode()) {
        case u'&':
            escaped += QLatin1String("&amp;");
            break;
        case u'<':
            escaped += QLatin1String("&lt;");
            break;
        case u'>':
            escaped += QLatin1String("&gt;");
            break;
        case u'"':
            escaped += QLatin1String("&quot;");
            break;
        case u'\t':
        case u'\n':
        case u'\r':
            escaped += QStringLiteral("&#%1;").arg(int(c.unicode()));
            break;
        default:
            if (c.unicode() >= 0x20) { // XML has no other control characters
                escaped += c;
            }
        }
    }
    return escaped.toUtf8();
}

/// One packet while it is changed.
class XmpPacket {
public:
    explicit XmpPacket(const QByteArray& packet) : mPacket(packet), mScan(packet) { }

    void MakeUpright()
    {
        ForEachProperty(kXmpTiff, "Orientation",
                        [this](const XmpElement& element, const XmpAttribute* attribute) {
                            if (attribute) {
                                Put(attribute->valueFrom, attribute->valueTo, "1");
                            } else if (element.closed && !element.empty) {
                                Put(element.inner, element.outer, "1");
                            }
                        });
    }

    void Describe(const XmpWishes::Description& description)
    {
        bool seen = false; // a packet has one such property
        ForEachProperty(kXmpDc, "description",
                        [&](const XmpElement& element, const XmpAttribute* attribute) {
                            if (std::exchange(seen, true)) {
                                return;
                            }
                            if (attribute) {
                                DescribeIn(*attribute, description);
                            } else if (element.closed) {
                                DescribeIn(element, description);
                            }
                        });
    }

    QByteArray Result()
    {
        std::sort(mEdits.begin(), mEdits.end(),
                  [](const Edit& a, const Edit& b) { return a.from > b.from; });
        QByteArray result = mPacket;
        for (const Edit& edit : mEdits) {
            result.replace(edit.from, edit.to - edit.from, edit.with);
        }
        Pad(result);
        return result;
    }

private:
    struct Edit {
        qsizetype from, to;
        QByteArray with;
    };
    void Put(qsizetype from, qsizetype to, const QByteArray& with)
    {
        if (mEdits.size() < kXmpMostEdits) {
            mEdits.push_back({from, to, with});
        }
    }

    template <typename Use> void ForEachProperty(const char* space, const char* local, Use&& use)
    {
        const std::vector<XmpElement>& elements = mScan.Elements();
        for (size_t i = 0; i < elements.size(); ++i) {
            const XmpElement& element = elements[i];
            if (mScan.IsDescription(element.parent) && mScan.Is(element.name, space, local)) {
                use(element, nullptr);
            }
            for (const XmpAttribute& attribute : element.attributes) {
                if (mScan.IsDescription(int(i)) && mScan.Is(attribute.name, space, local)) {
                    use(element, &attribute);
                }
            }
        }
    }

    bool InStep(qsizetype from, qsizetype to, const XmpWishes::Description& description) const
    {
        const QString text = XmpUnescaped(mPacket.sliced(from, to - from)).simplified();
        return text.isEmpty() || text == description.before.simplified();
    }

    void DescribeIn(const XmpAttribute& attribute, const XmpWishes::Description& description)
    {
        if (!InStep(attribute.valueFrom, attribute.valueTo, description)) {
            return;
        }
        if (description.after.isEmpty()) {
            Put(attribute.from, attribute.to, {});
        } else {
            Put(attribute.valueFrom, attribute.valueTo, XmpEscaped(description.after));
        }
    }

    void DescribeIn(const XmpElement& element, const XmpWishes::Description& description)
    {
        const XmpElement* holder = DefaultText(element);
        if (!holder || !holder->closed || !InStep(holder->inner, holder->outer, description)) {
            return;
        }
        if (description.after.isEmpty()) {
            Put(element.from, element.to, {});
        } else if (holder->empty) {
            const QByteArray tag = mPacket.sliced(holder->from, holder->to - holder->from - 2);
            Put(holder->from, holder->to,
                tag + '>' + XmpEscaped(description.after) + "</" + holder->name + '>');
        } else {
            Put(holder->inner, holder->outer, XmpEscaped(description.after));
        }
    }

    /// The element that holds the text in the default language, or the first in any; the property
    /// itself when it has no alternatives.
    const XmpElement* DefaultText(const XmpElement& property) const
    {
        const XmpElement* first = nullptr;
        bool nested = false;
        for (const XmpElement& element : mScan.Elements()) {
            if (element.from <= property.from || element.from >= property.outer) {
                continue;
            }
            nested = true;
            if (!mScan.Is(element.name, kXmpRdf, "li")) {
                continue;
            }
            first = first ? first : &element;
            for (const XmpAttribute& attribute : element.attributes) {
                if (attribute.name == "xml:lang"
                    && mPacket.sliced(attribute.valueFrom, attribute.valueTo - attribute.valueFrom)
                        == "x-default") {
                    return &element;
                }
            }
        }
        return nested ? first : &property;
    }

    /// Takes growth out of the blanks before the packet's end, and gives back what was saved.
    void Pad(QByteArray& result) const
    {
        const qsizetype end = result.lastIndexOf("<?xpacket end=");
        if (end < 0) {
            return;
        }
        const qsizetype grown = result.size() - mPacket.size();
        if (grown < 0) {
            const bool writable = QByteArrayView(result).sliced(end).contains('w');
            result.insert(end, QByteArray(writable ? -grown : 0, ' '));
            return;
        }
        qsizetype blanks = 0;
        while (blanks < grown && end - blanks > 1 && XmpIsBlank(result[end - blanks - 1])) {
            ++blanks;
        }
        result.remove(end - blanks, blanks);
    }

    const QByteArray& mPacket;
    XmpScan mScan;
    std::vector<Edit> mEdits;
};

} // namespace

QByteArray PatchXmp(const QByteArray& packet, const XmpWishes& wishes)
{
    if (!packet.contains('<') || packet.contains('\0') || !packet.isValidUtf8()) {
        return packet;
    }
    XmpPacket patched(packet);
    if (wishes.upright) {
        patched.MakeUpright();
    }
    if (wishes.description) {
        patched.Describe(*wishes.description);
    }
    return patched.Result();
}

} // namespace quillane
