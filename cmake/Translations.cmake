# velmora_add_translations(TARGET CATALOGUE)
#
# Compiles translations/CATALOGUE_*.ts into TARGET, as the resources
# :/translations/CATALOGUE_LANGUAGE.qm. In a static library they are found after
# Q_INIT_RESOURCE(CATALOGUE).

set(VELMORA_LANGUAGES de)

function(velmora_add_translations target catalogue)
    set(entries)
    set(sources)
    foreach(language ${VELMORA_LANGUAGES})
        list(APPEND sources "${CMAKE_SOURCE_DIR}/translations/${catalogue}_${language}.ts")
        string(APPEND entries "<file>${catalogue}_${language}.qm</file>")
    endforeach()
    qt5_add_translation(compiled ${sources})
    set(list "${CMAKE_CURRENT_BINARY_DIR}/${catalogue}.qrc")
    file(CONFIGURE OUTPUT "${list}"
        CONTENT "<RCC><qresource prefix=\"/translations\">${entries}</qresource></RCC>\n")
    qt5_add_resources(resource "${list}")
    target_sources(${target} PRIVATE ${resource})
endfunction()

# Refreshes the catalogues from the sources.
add_custom_target(translations-update
    COMMAND ${CMAKE_COMMAND} -E env LUPDATE=$<TARGET_FILE:Qt5::lupdate> "${CMAKE_SOURCE_DIR}/translations/update"
    VERBATIM)
