#pragma once

#include "app/limits.h"
#include "tags/coverpicture.h"

#include <QByteArray>
#include <QPixmap>
#include <QString>
#include <QStringList>
#include <QTextCodec>

#include <memory>

/**
 * A second reading of the tags, as plain as it can be, to hold the real readers against: the file as one byte
 * array, a position in it, recursion from page to page of an Ogg file. Only for small files. The log lines
 * come out as LogCatcher::plain() gives them. Pictures are decoded as everywhere: only which bytes they are
 * made of is read a second time.
 */
class NaiveReader {
public:
    NaiveReader(const QByteArray& file, const QString& path)
        : m_file(file)
        , m_path(path)
    {
    }

    QString title, artist, album;
    QPixmap picture;
    QStringList log;

    static NaiveReader readAll(const QByteArray& file, const QString& path)
    {
        NaiveReader reader(file, path);
        reader.readFront();
        return reader;
    }

    void readFront()
    {
        const QByteArray head = m_file.left(10);
        if (head.contains("ID3"))
            readMp3();
        else if (head.contains("Ogg"))
            readOgg();
        else if (head.contains("fLaC"))
            readFlac();
        else
            takeNameAsTitle();
        if (title.isEmpty())
            takeNameAsTitle();
    }

    void readMp3()
    {
        m_at = 0;
        if (!readMp3Tag(read(10)))
            print('W', "[ID3] FILE-Tag is failed to initialize");
    }

    void readFlac()
    {
        m_at = 0;
        if (readFlacBlocks() == 0)
            print('W', "[FLAC] FILE-Tag is failed to initialize");
    }

    void readOgg()
    {
        m_at = 0;
        if (readOggPage() == 0)
            print('W', "[OGG] FILE-Tag is failed to initialize");
    }

private:
    // The file, and numbers in it

    QByteArray read(qint64 count)
    {
        const QByteArray bytes = cut(m_file, m_at, count);
        m_at += bytes.size();
        return bytes;
    }
    static QByteArray cut(const QByteArray& bytes, qint64 from, qint64 count)
    {
        if (from >= bytes.size())
            return {};
        return bytes.mid(int(from), int(qMin<qint64>(count, bytes.size() - from)));
    }
    static qint64 little(const QByteArray& bytes)
    {
        qint64 number = 0;
        for (int i = int(bytes.size()) - 1; i >= 0; --i)
            number = number * 256 + quint8(bytes.at(i));
        return number;
    }
    static qint64 big(const QByteArray& bytes)
    {
        qint64 number = 0;
        for (const char byte : bytes)
            number = number * 256 + quint8(byte);
        return number;
    }
    /** Numbers of 32 bits are logged with their sign. */
    static QByteArray asShown(qint64 number)
    {
        return QByteArray::number(number < 0x80000000LL ? number : number - 0x100000000LL);
    }
    static QByteArray asCString(const QByteArray& bytes) { return QByteArray(bytes.constData()); }
    static QString utf8(const QByteArray& bytes) { return QString::fromUtf8(asCString(bytes)); }

    /** A line feed that ends the line stays. */
    static QByteArray withoutControls(const QByteArray& line)
    {
        QByteArray shown;
        for (int i = 0; i < line.size(); ++i) {
            const QByteArray byte = line.mid(i, 1);
            const bool isControl = quint8(byte.at(0)) < 32 || quint8(byte.at(0)) == 127;
            const bool ends = byte == "\n" && i == line.size() - 1;
            shown += isControl && !ends ? "\\x" + byte.toHex() : byte;
        }
        return shown;
    }
    void print(char level, const QByteArray& line)
    {
        const int room = level == 'V' ? 8191 : 8191 - 25; // the prefix takes its share of the line
        const QString text = QString::fromUtf8(withoutControls(line.left(room)));
        log << (level == 'V' ? text : QLatin1Char(level) + QStringLiteral(" ") + text);
    }

    void takeNameAsTitle()
    {
        print('W', "FILE-Tag is failed to initialize");
        const auto dot = m_path.lastIndexOf(QLatin1Char('.'));
        if (dot < 0) {
            print('W', "This File is not mp3 ");
            m_path.chop(1);
        } else {
            m_path.truncate(dot);
        }
        title = m_path.section(QLatin1Char('/'), -1);
    }

    // ID3

    bool readMp3Tag(const QByteArray& header)
    {
        if (!header.contains("ID3"))
            return readId3v1();
        qint64 size = 0;
        for (int i = 6; i < 10; ++i)
            size = size * 128 + (i < header.size() ? quint8(header.at(i)) & 0x7F : 0);
        const QByteArray body = read(size);
        QByteArray content;
        if (findFrame(body, "TALB", "[ID3] not found TALB(album)", &content))
            album = frameText(content);
        if (findFrame(body, "TPE1", "[ID3] not found TPE1(artist)", &content))
            artist = frameText(content);
        if (findFrame(body, "TIT2", "[ID3] not found TIT2(title)", &content))
            title = frameText(content);
        if (findFrame(body, "APIC", "[ID3] The MP3-FILE is not include a APIC-DATA", &content))
            picture = frameImage(content);
        return true;
    }

    bool readId3v1()
    {
        print('W', "[ID3] not found ID3v2");
        if (m_file.size() >= 128)
            m_at = m_file.size() - 128;
        const QByteArray tag = read(128);
        const auto at = tag.indexOf("TAG");
        if (at < 0) {
            print('W', "[ID3] ID3 find error");
            return false;
        }
        print('I', "[ID3] ID3v1");
        QTextCodec* codec = QTextCodec::codecForName("UTF-8");
        title = codec->toUnicode(tag.mid(at + 3, 30));
        artist = codec->toUnicode(tag.mid(at + 33, 30));
        album = codec->toUnicode(tag.mid(at + 63, 30));
        return true;
    }

    bool findFrame(const QByteArray& body, const char* id, const char* missing, QByteArray* content)
    {
        const auto at = body.indexOf(id);
        if (at < 0) {
            print('W', missing);
            return false;
        }
        const qint64 size = big(cut(body, at + 4, 4).leftJustified(4, '\0'));
        print('V', "[ID3] MP3 Tag, Frame Size [ " + asShown(size) + " ]");
        *content = cut(body, at + 10, size);
        return true;
    }

    QString frameText(const QByteArray& content)
    {
        const int encoding = content.isEmpty() ? 0 : quint8(content.at(0));
        const char* codec = encoding == 0 ? "euc-kr" : encoding == 1 ? "UTF-16" : "UTF-8";
        const std::unique_ptr<QTextDecoder> decoder(QTextCodec::codecForName(codec)->makeDecoder());
        const QString text = decoder->toUnicode(content.mid(1)).left(limits::textCharacters);
        const QByteArray shown = asCString(text.toUtf8());
        if (encoding == 0)
            print('I', "[ID3] MP3 Tag ( latin01 ) [ " + shown + " ] ");
        else if (encoding == 1)
            print('I', "[ID3] MP3 Tag (utf-16)[ " + shown + " ] ");
        else
            print('I', "[ID3] MP3 Tag (utf-8)[ " + shown + " ] ");
        return text;
    }

    static QPixmap frameImage(const QByteArray& content)
    {
        if (content.contains("jpeg"))
            return coverPicture(content.mid(14));
        if (content.contains("jpg") || content.contains("png"))
            return coverPicture(content.mid(13));
        return {};
    }

    // Vorbis comments, of which FLAC and Ogg differ in the tag of the log lines and in where they start

    bool readVorbis(const QByteArray& block, qint64 start, const QByteArray& tag, const QByteArray& vendorTag)
    {
        const qint64 vendorSize = little(cut(block, start, 4));
        print('I', vendorTag + utf8(cut(block, start + 4, vendorSize)).toUtf8());
        const qint64 count = little(cut(block, start + 4 + vendorSize, 4));
        const qint64 limit = (qint64(block.size()) - 8) / 4;
        if (count > limit) {
            print('W', tag + "Vorbis size error " + asShown(count) + " > " + QByteArray::number(limit));
            return false;
        }
        qint64 at = start + 8 + vendorSize;
        for (qint64 i = 0; i < count; ++i) {
            const qint64 size = little(cut(block, at, 4));
            const QString text = utf8(cut(block, at + 4, size));
            at += 4 + size;
            if (at > block.size())
                break;
            const QStringList parts = text.split(QLatin1Char('='));
            if (parts.size() < 2)
                continue;
            takeComment("TITLE", &title, parts, tag);
            takeComment("ARTIST", &artist, parts, tag);
            takeComment("ALBUM", &album, parts, tag);
        }
        return true;
    }

    void takeComment(const char* key, QString* field, const QStringList& parts, const QByteArray& tag)
    {
        if (parts.at(0).compare(QLatin1String(key), Qt::CaseInsensitive) != 0)
            return;
        *field = parts.at(1).left(limits::textCharacters);
        print('I', tag + key + " - " + asCString(field->toLatin1()));
    }

    // FLAC

    int readFlacBlocks()
    {
        QByteArray buffer = read(10);
        if (!buffer.contains("fLaC")) {
            print('W', "[FLAC] Not found fLaC");
            return 0;
        }
        bool last = buffer.size() > 4 && (quint8(buffer.at(4)) & 0x80);
        const qint64 first = big(cut(buffer, 5, 3));
        if (10 < first + 8) {
            read(first - 2);
            buffer = read(4);
        } else {
            buffer.remove(0, int(first) + 8);
            buffer += read(4 - buffer.size());
        }
        QByteArray comments, image;
        for (int count = 1; !last; ++count) {
            if (count > limits::flacBlocks) {
                print('W', "[FLAC] more than " + QByteArray::number(limits::flacBlocks) + " blocks");
                break;
            }
            const int flags = buffer.isEmpty() ? 0 : quint8(buffer.at(0));
            const qint64 size = big(cut(buffer, 1, 3));
            if (size == 0) {
                print('E', "Not found tag information [1]");
                return 0;
            }
            if (m_file.size() <= size) {
                print('E', "[FLAC] Not found tag information [2]");
                break;
            }
            const QByteArray block = read(size);
            if ((flags & 0x7F) == 4)
                comments = block;
            if ((flags & 0x7F) == 6)
                image = block;
            buffer = read(4);
            last = flags & 0x80;
        }
        if (comments.size() >= 5 && !readVorbis(comments, 0, "[FLAC] ", ""))
            return 0;
        return image.size() >= 5 && readFlacPicture(image) ? 1 : 0;
    }

    bool inappropriate(const QByteArray& what)
    {
        print('W', "[FLAC] Inappropriate " + what + " information");
        return false;
    }

    bool readFlacPicture(const QByteArray& block)
    {
        const qint64 n = block.size();
        if (!(n >= 4))
            return inappropriate("picturetype");
        if (!(n >= 8))
            return inappropriate("MIME-length");
        const qint64 M = big(cut(block, 4, 4));
        if (!(M + 8 <= n))
            return inappropriate("MIME-data");
        if (!(M + 11 < n))
            return inappropriate("description-length");
        const qint64 D = big(cut(block, M + 8, 4));
        const qint64 P = M + 12 + D;
        if (!(P <= n))
            return inappropriate("description-data");
        if (!(P + 3 < n))
            return inappropriate("picture-width");
        if (!(P + 7 < n))
            return inappropriate("picture-height");
        if (!(P + 11 < n))
            return inappropriate("color-depth");
        if (!(P + 15 < n))
            return inappropriate("indexed-color");
        if (!(P + 19 < n))
            return inappropriate("picture-length");
        const qint64 K = big(cut(block, P + 16, 4));
        if (!(K + P + 20 <= n))
            return inappropriate("picture-data");
        picture = coverPicture(cut(block, P + 20, K));
        return true;
    }

    // Ogg

    int readOggPage()
    {
        const QByteArray header = read(27);
        if (m_file.size() < 100) {
            print('W', "[OGG] parser error");
            return 0;
        }
        if (!header.contains("OggS")) {
            print('W', "[OGG] Not found OggS");
            return 0;
        }
        const QByteArray values = read(header.size() < 27 ? 0 : quint8(header.at(26)));
        QList<int> sizes;
        int total = 0;
        for (const char value : values) {
            total += quint8(value);
            if (quint8(value) == 255)
                continue;
            sizes << total;
            total = 0;
        }
        for (const int size : sizes) {
            const QByteArray packet = read(size);
            if (packet.isEmpty()) {
                print('W', "[OGG] PacketSize error");
                return 0;
            }
            const auto at = packet.indexOf("\3vorbis");
            if (at < 0)
                readOggPage();
            else if (!readVorbis(packet, at + 7, "[OGG] ", "[OGG] "))
                return 0;
        }
        return 1;
    }

    QByteArray m_file;
    QString m_path;
    qint64 m_at = 0;
};
