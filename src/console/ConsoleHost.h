#pragma once

namespace qv {

// What the console logic asks of its window beyond the controls: the two
// timers, the other windows, and the end of the program. The window
// implements it; tests record the calls.
class ConsoleHost {
public:
    virtual ~ConsoleHost() = default;

    // The continuous read: ticks every 1000 ms into TimerEntree_Timer().
    virtual void startTimerEntree() = 0;
    virtual void stopTimerEntree() = 0;
    virtual bool timerEntreeRunning() const = 0;

    // The timer `test`: ticks every `intervalMs` into test_Timer() until
    // stopped; a new start replaces the interval.
    virtual void startTest(int intervalMs) = 0;
    virtual void stopTest() = 0;

    // The wait of the write cycle: runs the clicks and ticks that have come
    // since the cycle began, or waits a moment for one. false once the
    // program is closing: the wait then ends.
    virtual bool runQueuedEvents() = 0;

    // The connection window, for MainScreenLogic::Form_Load and
    // MnuConnect_Click: returns once it has closed. It decides
    // the device state and the enabling of Lire, Ecrire, SetTime, mnuPLC and
    // nmuBootLoad itself; a window left without a choice sets TimeOut.
    virtual void showConnection() = 0;
    // The programme editor, the production report and the About box.
    virtual void showProgrammation() = 0;
    virtual void showProduction() = 0;
    virtual void showAbout() = 0;
    // The splash screen, non-modal; it closes itself after 2000 ms, on a
    // click or on a key.
    virtual void showSplash() = 0;

    // The firmware update; `demande` true when the operator asked for it
    // from the menu.
    virtual void UpdateFirmware(bool demande) = 0;

    // Closes the main window and thereby ends the program. The window's close
    // runs MainScreenLogic::Form_Unload().
    virtual void closeApplication() = 0;
};

} // namespace qv
