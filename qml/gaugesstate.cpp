#include "gaugesstate.h"

#include <velgaugesgroupcmd.h>

namespace canbus::qml {

GaugesState::GaugesState(QObject *parent)
    : State(parent)
{
    using Group = VelGaugesGroupCmd;
    Group *const group = Group::instance();
    follow(this, group, &Group::updateGaugeType, &GaugesState::m_types, &GaugesState::typesChanged);
    follow(this, group, &Group::updateGaugeTopText, &GaugesState::m_title, &GaugesState::titleChanged);
    follow(this, group, &Group::updateGaugeComText, &GaugesState::m_labels, &GaugesState::labelsChanged);
    follow(this, group, &Group::updateGaugeScale, &GaugesState::m_scale, &GaugesState::scaleChanged);
    follow(this, group, &Group::updateGaugeCenterText, &GaugesState::m_centerTexts,
           &GaugesState::centerTextsChanged);
    follow(this, group, &Group::updateGaugeTopLRText, &GaugesState::m_topTexts,
           &GaugesState::topTextsChanged);
    follow(this, group, &Group::updateGaugeBottomLRText, &GaugesState::m_bottomTexts,
           &GaugesState::bottomTextsChanged);
    follow(this, group, &Group::updateGaugePeakColorState, &GaugesState::m_peakColor,
           &GaugesState::peakColorChanged);
    follow(this, group, &Group::updateGaugeComLabelsState, &GaugesState::m_labelState1,
           &GaugesState::labelState1Changed, &GaugesState::m_labelState2, &GaugesState::labelState2Changed);
    follow(this, group, &Group::updateGaugeZeroPos, &GaugesState::m_zeroPositions,
           &GaugesState::zeroPositionsChanged);
    follow(this, group, &Group::updateGaugeValue, &GaugesState::m_values, &GaugesState::valuesChanged);
    follow(this, group, &Group::updateGaugeValueText, &GaugesState::m_valueTexts,
           &GaugesState::valueTextsChanged);
    follow(this, group, &Group::updateGaugeShift, &GaugesState::m_shift, &GaugesState::shiftChanged);
    follow(this, group, &Group::updateGaugeFormat, &GaugesState::m_formats, &GaugesState::formatsChanged);
    // All that has arrived so far.
    group->getGaugesInfo();
}

} // namespace canbus::qml
