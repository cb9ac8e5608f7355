include $(sort $(wildcard $(BR2_EXTERNAL_APCONF_PATH)/package/*/*.mk))
