import QtQuick
import Korvi.ViewModels

// What covers the window until the user has dealt with it: the consent, whatever screen is below, and then a guide.
Item {
    id: sheets

    required property AIDataConsent consent
    required property ChatViewModel chat
    required property Onboarding onboarding

    readonly property bool wantsConsent: !consent.aiDataConsentGiven
    readonly property string guideKind: wantsConsent ? "" : onboarding.kind

    signal closed

    function show(): void {
        if (wantsConsent)
            consentSheet.open({})
        if (guideKind.length > 0)
            guide.open({ kind: guideKind })
        else
            guide.close()
    }

    Component.onCompleted: show()
    onGuideKindChanged: show()

    OnDemand {
        id: consentSheet

        source: "AIDataConsentView.qml"

        onItemChanged: {
            if (!item)
                sheets.closed()
        }
    }
    Connections {
        function onAccepted() {
            sheets.consent.give()
        }

        target: consentSheet.item
    }
    OnDemand {
        id: guide

        source: "OnboardingGuideView.qml"

        // Another guide was asked for while this one was closing.
        onItemChanged: {
            if (item)
                return
            sheets.closed()
            sheets.show()
        }
    }
    Connections {
        function onComplete() {
            sheets.onboarding.complete()
        }
        function onPrimaryAction() {
            sheets.chat.createChat()
        }

        ignoreUnknownSignals: true
        target: guide.item
    }
}
