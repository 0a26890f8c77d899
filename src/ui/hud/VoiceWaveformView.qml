import QtQuick
import QtQuick.Shapes

/// Five bars that rise and fall one after the other.
Shape {
    id: waveform

    required property QtObject beat
    property color tint

    width: 27
    height: 16

    WaveBar { beat: waveform.beat; tint: waveform.tint; place: 0 }
    WaveBar { beat: waveform.beat; tint: waveform.tint; place: 1 }
    WaveBar { beat: waveform.beat; tint: waveform.tint; place: 2 }
    WaveBar { beat: waveform.beat; tint: waveform.tint; place: 3 }
    WaveBar { beat: waveform.beat; tint: waveform.tint; place: 4 }
}
