#include "figurerules.h"

#include <QtCore/QMetaProperty>
#include <QtTest/QTest>

// Each of the library's figures is wrong here, and has to be the one that is named.

class FigureRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachWrongFigureIsNamed();
};

void FigureRulesTest::eachWrongFigureIsNamed()
{
    const QMetaObject &type = canbus::LinkFigures::staticMetaObject;
    for (int i = 0; i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        canbus::LinkFigures figures;
        QVariant value = 1U;
        WireCounts counts;
        counts.timedAnswers = 1;
        if (property.userType() == QMetaType::QVariantMap)
            value = QVariantMap {{property.name(), QVariantMap {{"frames", 1}}}};
        QVERIFY(property.writeOnGadget(&figures, value));
        Findings findings;
        checkFigures(figures, counts, findings);
        QVERIFY2(findings.text().contains(property.name()), property.name());
    }
}

QTEST_GUILESS_MAIN(FigureRulesTest)
#include "tst_figurerules.moc"
