include $(sort $(wildcard $(BR2_EXTERNAL_VIREO_PATH)/package/*/*.mk))
