// Copy and paste between the engine and other programs, on a display of their own.
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace quillane {
namespace {

constexpr int kPeerWait = 30'000; // milliseconds; a condition that fails, not a delay

class ClipboardPeers : public testing::Test {
protected:
    void SetUp() override
    {
        mServer.setStandardErrorFile(QProcess::nullDevice()); // it tells of each display in use
        mServer.start(QStringLiteral("Xvfb"),
                      {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                       QStringLiteral("0"), QStringLiteral("640x480x24"),
                       QStringLiteral("-nolisten"), QStringLiteral("tcp")});
        ASSERT_TRUE(mServer.waitForStarted(kPeerWait));
        ASSERT_TRUE(mServer.waitForReadyRead(kPeerWait));
        mEnvironment = QProcessEnvironment::systemEnvironment();
        mEnvironment.insert(QStringLiteral("DISPLAY"),
                            QStringLiteral(":")
                                + QString::fromLatin1(mServer.readLine().trimmed()));
        mEnvironment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    }
    void TearDown() override
    {
        mServer.terminate();
        EXPECT_TRUE(mServer.waitForFinished(kPeerWait));
    }
    static QString Sample(const char* name)
    {
        return QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/") + QLatin1String(name);
    }
    QString File(const char* name) const { return mFolder.filePath(QLatin1String(name)); }

    /// Runs a program to its end and returns what it said.
    QByteArray Run(const QString& program, const QStringList& arguments) const
    {
        QProcess process;
        process.setProcessEnvironment(mEnvironment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(program, arguments);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(kPeerWait)) << program.toStdString();
        return process.readAllStandardOutput();
    }
    /// Has another program offer a file's content on the clipboard.
    void Offer(const char* kind, const QString& file) const
    {
        QProcess process;
        process.setProcessEnvironment(mEnvironment);
        // It stays behind to answer, and must not hold the pipes.
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(QStringLiteral("xclip"),
                      {QStringLiteral("-i"), QStringLiteral("-selection"),
                       QStringLiteral("clipboard"), QStringLiteral("-t"), QLatin1String(kind),
                       file});
        ASSERT_TRUE(process.waitForFinished(kPeerWait));
        ASSERT_EQ(process.exitCode(), 0);
    }
    QByteArray Paste() const
    {
        return Run(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-clipboard-peer"),
                   {QStringLiteral("paste"), File("pasted.png")});
    }
    /// What another program gets, while the picture is on the clipboard.
    QByteArray Taken(const QStringList& copy, const char* kind)
    {
        QProcess peer;
        peer.setProcessEnvironment(mEnvironment);
        peer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        peer.start(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-clipboard-peer"),
                   QStringList{QStringLiteral("copy")} + copy);
        EXPECT_TRUE(peer.waitForReadyRead(kPeerWait));
        EXPECT_EQ(peer.readLine().trimmed(), "copied");
        QByteArray content =
            Run(QStringLiteral("xclip"),
                {QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("clipboard"),
                 QStringLiteral("-t"), QLatin1String(kind)});
        peer.closeWriteChannel();
        EXPECT_TRUE(peer.waitForFinished(kPeerWait));
        return content;
    }
    void Write(const char* name, const QByteArray& content) const
    {
        FILE* const file = std::fopen(File(name).toLocal8Bit().constData(), "wb");
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(std::fwrite(content.constData(), 1, size_t(content.size()), file),
                  size_t(content.size()));
        std::fclose(file);
    }

    QTemporaryDir mFolder;
    QProcessEnvironment mEnvironment;
    QProcess mServer;
};

TEST_F(ClipboardPeers, APictureOfAnotherProgramIsPasted)
{
    struct Case {
        const char* kind;
        const char* sample;
    };
    for (const Case& one : {Case{"image/png", "petals.png"}, Case{"image/bmp", "chart.BMP"},
                            Case{"image/tiff", "CHART.TIF"}, Case{"image/gif", "chart.gif"}}) {
        Offer(one.kind, Sample(one.sample));
        EXPECT_TRUE(Paste().startsWith("pasted ")) << one.kind;
        const QImage pasted(File("pasted.png"));
        Run(QStringLiteral("gm"),
            {QStringLiteral("convert"), Sample(one.sample), File("source.png")});
        const QImage source(File("source.png"));
        ASSERT_FALSE(source.isNull());
        EXPECT_EQ(pasted.convertToFormat(QImage::Format_RGB32),
                  source.convertToFormat(QImage::Format_RGB32))
            << one.kind;
    }
}

TEST_F(ClipboardPeers, AFileCopiedInAnotherProgramIsPasted)
{
    Write("list", "file://" + Sample("petals.png").toUtf8().toPercentEncoding("/") + "\r\n");
    Offer("text/uri-list", File("list"));
    EXPECT_TRUE(Paste().startsWith("pasted "));
    EXPECT_EQ(QImage(File("pasted.png")).size(), QImage(Sample("petals.png")).size());
}

TEST_F(ClipboardPeers, NonsenseOfAnotherProgramIsRefused)
{
    Write("nonsense", QByteArray(3'000'000, 'x'));
    for (const char* kind : {"image/png", "image/bmp", "application/x-qt-image", "text/plain"}) {
        Offer(kind, File("nonsense"));
        EXPECT_TRUE(Paste().startsWith("failed ")) << kind;
    }
}

TEST_F(ClipboardPeers, AnotherProgramTakesWhatIsCopied)
{
    const QImage source = QImage(Sample("petals.png")).convertToFormat(QImage::Format_RGB32);
    for (const char* kind : {"image/png", "image/bmp"}) {
        const QImage taken = QImage::fromData(Taken({Sample("petals.png")}, kind));
        EXPECT_EQ(taken.convertToFormat(QImage::Format_RGB32), source) << kind;
    }
    const QImage region =
        QImage::fromData(Taken({Sample("petals.png"), QStringLiteral("ellipse")}, "image/png"));
    ASSERT_EQ(region.size(), source.size());
    EXPECT_EQ(qAlpha(region.pixel(0, 0)), 0);
    const QPoint middle = source.rect().center();
    EXPECT_EQ(region.pixel(middle), source.pixel(middle));
}

TEST_F(ClipboardPeers, TwoOfTheProgramExchangeAPicture)
{
    QProcess peer;
    peer.setProcessEnvironment(mEnvironment);
    peer.start(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-clipboard-peer"),
               {QStringLiteral("copy"), Sample("AST_0101.JPG")});
    ASSERT_TRUE(peer.waitForReadyRead(kPeerWait));
    EXPECT_TRUE(Paste().startsWith("pasted "));
    EXPECT_EQ(QImage(File("pasted.png")).size(), QImage(Sample("AST_0101.JPG")).size());
    peer.closeWriteChannel();
    EXPECT_TRUE(peer.waitForFinished(kPeerWait));
}

} // namespace
} // namespace quillane
