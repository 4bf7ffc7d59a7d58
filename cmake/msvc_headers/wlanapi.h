#include_next <wlanapi.h>
#pragma once

typedef enum _DOT11_RADIO_STATE {
  dot11_radio_state_unknown,
  dot11_radio_state_on,
  dot11_radio_state_off
} DOT11_RADIO_STATE;

typedef struct _WLAN_PHY_RADIO_STATE {
  DWORD dwPhyIndex;
  DOT11_RADIO_STATE dot11SoftwareRadioState;
  DOT11_RADIO_STATE dot11HardwareRadioState;
} WLAN_PHY_RADIO_STATE;

typedef struct _WLAN_RADIO_STATE {
  DWORD dwNumberOfPhys;
  WLAN_PHY_RADIO_STATE PhyRadioState[64];
} WLAN_RADIO_STATE;
