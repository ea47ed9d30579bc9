# The version stands in base/identity.h and nowhere else: the project, the version resources of both programs and the
# package take it from there.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/base/identity.h)
file(STRINGS ${CMAKE_CURRENT_SOURCE_DIR}/base/identity.h line REGEX "kPluginVersion = \"[0-9.]+\"")
string(REGEX MATCH "[0-9]+[.][0-9]+[.][0-9]+" CORVALIS_VERSION "${line}")
if(NOT CORVALIS_VERSION)
    message(FATAL_ERROR "base/identity.h names no kPluginVersion")
endif()

# add_version_resource(TARGET FILE TYPE DESCRIPTION): TYPE is VFT_DLL or VFT_APP.
function(add_version_resource RC_TARGET RC_FILE RC_FILE_TYPE RC_DESCRIPTION)
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${RC_TARGET}_version.rc)
    configure_file(${CMAKE_SOURCE_DIR}/resources/version.rc.in ${resource} @ONLY)
    target_sources(${RC_TARGET} PRIVATE ${resource})
endfunction()
