#include "qt/pdf.h"

#include <QDateTime>
#include <QHash>

#include <map>
#include <vector>

namespace quillon {

namespace {

constexpr qsizetype kXrefEntry = 20;  // bytes of a line in the table of objects

/// Puts the date that the environment asks for in place of the present one.
void FixDate(QByteArray& pdf)
{
    const QByteArray epoch = qgetenv("SOURCE_DATE_EPOCH");
    if (epoch.isEmpty())
        return;
    const QDateTime date = QDateTime::fromSecsSinceEpoch(epoch.toLongLong(), Qt::UTC);
    const QByteArray key = "/CreationDate (D:";
    const qsizetype start = pdf.indexOf(key);
    const qsizetype end = start < 0 ? -1 : pdf.indexOf(')', start);
    if (end < 0)
        return;
    QByteArray text = date.toString("yyyyMMddHHmmss").toLatin1() + "+00'00'";
    const qsizetype length = end - start - key.size();
    text = text.leftJustified(length, ' ', true);  // offsets in the file stay as they are
    pdf.replace(start + key.size(), length, text);
}

/// Inserts texts into a file and keeps its table of objects right.
class PdfEditor {
public:
    explicit PdfEditor(QByteArray& thePdf) : pdf(thePdf)
    {
        const qsizetype told = pdf.lastIndexOf("startxref");
        xref =
            told < 0 ? -1 : pdf.mid(told + 9).trimmed().split('\n').first().trimmed().toLongLong();
        if (xref <= 0 || !pdf.mid(xref).startsWith("xref\n0 "))
            return;
        const qsizetype endOfLine = pdf.indexOf('\n', xref + 5);
        const int count = pdf.mid(xref + 7, endOfLine - xref - 7).trimmed().toInt();
        table = endOfLine + 1;
        for (int i = 1; i < count; ++i)
            objects.push_back(pdf.mid(table + i * kXrefEntry, 10).toLongLong());
    }

    /// Of the object's own text, not of its stream.
    template <typename Visit> void EachObject(Visit visit) const
    {
        for (const qsizetype start : objects) {
            const qsizetype end = pdf.indexOf("endobj", start);
            const qsizetype stream = pdf.indexOf("stream\n", start);
            visit(start, stream >= 0 && stream < end ? stream : end);
        }
    }

    void Insert(qsizetype place, const QByteArray& text) { insertions[place] += text; }

    void Finish()
    {
        for (std::size_t i = 0; i < objects.size(); ++i)
            pdf.replace(table + static_cast<qsizetype>(i + 1) * kXrefEntry, 10,
                        QByteArray::number(Moved(objects[i])).rightJustified(10, '0'));
        const qsizetype told = pdf.lastIndexOf("startxref\n") + 10;
        const qsizetype end = pdf.indexOf('\n', told);
        pdf.replace(told, end - told, QByteArray::number(Moved(xref)));
        for (auto insertion = insertions.rbegin(); insertion != insertions.rend(); ++insertion)
            pdf.insert(insertion->first, insertion->second);
    }

private:
    /// A place after all insertions before it.
    qsizetype Moved(qsizetype place) const
    {
        qsizetype moved = place;
        for (const auto& [at, text] : insertions)
            if (at < place)
                moved += text.size();
        return moved;
    }

    QByteArray& pdf;
    qsizetype xref = -1;
    qsizetype table = 0;
    std::vector<qsizetype> objects;  // where each begins
    std::map<qsizetype, QByteArray> insertions;
};

QByteArray TextString(const QString& text)
{
    QByteArray hex = "<FEFF";
    for (const QChar c : text)
        hex += QByteArray::number(c.unicode(), 16).rightJustified(4, '0').toUpper();
    return hex + '>';
}

void AddFacts(const QByteArray& pdf, const PdfFacts& facts, PdfEditor& editor)
{
    const qsizetype creator = pdf.indexOf("/Creator");
    if (creator < 0)
        return;
    if (!facts.Author.isEmpty())
        editor.Insert(creator, "/Author " + TextString(facts.Author) + "\n");
    if (!facts.Subject.isEmpty())
        editor.Insert(creator, "/Subject " + TextString(facts.Subject) + "\n");
}

QByteArray NameAt(const QByteArray& pdf, qsizetype place)
{
    qsizetype end = place;
    while (end < pdf.size() && !QByteArray(" \n\r/<>[]()").contains(pdf[end]))
        ++end;
    return pdf.mid(place, end - place);
}

/// The toolkit tells in a font's descriptor alone that it is a subset: "ABCDEF+" before its name.
void MarkSubsets(const QByteArray& pdf, PdfEditor& editor)
{
    const QByteArray nameKey = "/FontName /";
    const QByteArray baseKey = "/BaseFont /";
    QHash<QByteArray, QByteArray> tags;
    editor.EachObject([&](qsizetype start, qsizetype end) {
        const qsizetype at = pdf.indexOf(nameKey, start);
        const QByteArray name = at < 0 || at >= end ? "" : NameAt(pdf, at + nameKey.size());
        if (const qsizetype plus = name.indexOf('+'); plus > 0)
            tags[name.mid(plus + 1)] = name.left(plus + 1);
    });
    editor.EachObject([&](qsizetype start, qsizetype end) {
        const qsizetype at = pdf.indexOf(baseKey, start);
        if (at >= 0 && at < end)
            editor.Insert(at + baseKey.size(), tags[NameAt(pdf, at + baseKey.size())]);
    });
}

}  // namespace

void FinishPdf(QByteArray& pdf, const PdfFacts& facts)
{
    FixDate(pdf);
    PdfEditor editor(pdf);
    AddFacts(pdf, facts, editor);
    MarkSubsets(pdf, editor);
    editor.Finish();
}

}  // namespace quillon
