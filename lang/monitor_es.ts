<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es_ES">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About Monitor</source>
        <translation>Acerca de Monitor</translation>
    </message>
    <message>
        <source>Network processing monitor</source>
        <translation>Monitor de procesamiento en red</translation>
    </message>
    <message>
        <source>Copyright © 2026 Korvane. All rights reserved.</source>
        <translation>Copyright © 2026 Korvane. Todos los derechos reservados.</translation>
    </message>
</context>
<context>
    <name>BatchDetailsDialog</name>
    <message>
        <source>Batch Details</source>
        <translation>Detalles del lote</translation>
    </message>
    <message>
        <source>Project:</source>
        <translation>Proyecto:</translation>
    </message>
    <message>
        <source>Last error:</source>
        <translation>Último error:</translation>
    </message>
    <message>
        <source>Tasks</source>
        <translation>Tareas</translation>
    </message>
</context>
<context>
    <name>CurrentRowAnnouncer</name>
    <message>
        <source>%1: %2</source>
        <comment>a column header and the cell below it</comment>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>Errors</name>
    <message>
        <source>Network failure</source>
        <translation>Error de red</translation>
    </message>
    <message>
        <source>Can&apos;t connect to server</source>
        <translation>No se puede conectar con el servidor</translation>
    </message>
    <message>
        <source>Disconnected from server</source>
        <translation>Desconectado del servidor</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Archivo</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>Ay&amp;uda</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>&amp;Salir</translation>
    </message>
    <message>
        <source>About Monitor...</source>
        <translation>Acerca de Monitor...</translation>
    </message>
    <message>
        <source>Exit the application</source>
        <translation>Salir de la aplicación</translation>
    </message>
    <message>
        <source>Display program information, version number and copyright</source>
        <translation>Mostrar la información del programa, el número de versión y el copyright</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Listo</translation>
    </message>
</context>
<context>
    <name>Monitor</name>
    <message>
        <source>Add Photos</source>
        <translation>Añadir fotos</translation>
    </message>
    <message>
        <source>Align Photos</source>
        <translation>Alinear fotos</translation>
    </message>
    <message>
        <source>Align Chunks</source>
        <translation>Alinear bloques</translation>
    </message>
    <message>
        <source>Analyze Photos</source>
        <translation>Analizar fotos</translation>
    </message>
    <message>
        <source>Build Contours</source>
        <translation>Generar curvas de nivel</translation>
    </message>
    <message>
        <source>Build DEM</source>
        <translation>Generar MDE</translation>
    </message>
    <message>
        <source>Build Dense Cloud</source>
        <translation>Generar nube densa</translation>
    </message>
    <message>
        <source>Build Mesh</source>
        <translation>Generar malla</translation>
    </message>
    <message>
        <source>Build Orthomosaic</source>
        <translation>Generar ortomosaico</translation>
    </message>
    <message>
        <source>Build Texture</source>
        <translation>Generar textura</translation>
    </message>
    <message>
        <source>Build Tiled Model</source>
        <translation>Generar modelo teselado</translation>
    </message>
    <message>
        <source>Build UV</source>
        <translation>Generar coordenadas UV</translation>
    </message>
    <message>
        <source>Classify Ground Points</source>
        <translation>Clasificar puntos de terreno</translation>
    </message>
    <message>
        <source>Close Holes</source>
        <translation>Cerrar huecos</translation>
    </message>
    <message>
        <source>Compact Dense Cloud</source>
        <translation>Compactar nube densa</translation>
    </message>
    <message>
        <source>Decimate Mesh</source>
        <translation>Simplificar malla</translation>
    </message>
    <message>
        <source>Detect Markers</source>
        <translation>Detectar marcadores</translation>
    </message>
    <message>
        <source>Duplicate Chunk</source>
        <translation>Duplicar bloque</translation>
    </message>
    <message>
        <source>Export Cameras</source>
        <translation>Exportar cámaras</translation>
    </message>
    <message>
        <source>Export Contours</source>
        <translation>Exportar curvas de nivel</translation>
    </message>
    <message>
        <source>Export DEM</source>
        <translation>Exportar MDE</translation>
    </message>
    <message>
        <source>Export Depth Map</source>
        <translation>Exportar mapa de profundidad</translation>
    </message>
    <message>
        <source>Export Masks</source>
        <translation>Exportar máscaras</translation>
    </message>
    <message>
        <source>Export Matches</source>
        <translation>Exportar correspondencias</translation>
    </message>
    <message>
        <source>Export Model</source>
        <translation>Exportar modelo</translation>
    </message>
    <message>
        <source>Export Orthomosaic</source>
        <translation>Exportar ortomosaico</translation>
    </message>
    <message>
        <source>Export Orthophotos</source>
        <translation>Exportar ortofotos</translation>
    </message>
    <message>
        <source>Export Panorama</source>
        <translation>Exportar panorama</translation>
    </message>
    <message>
        <source>Export Points</source>
        <translation>Exportar puntos</translation>
    </message>
    <message>
        <source>Export Report</source>
        <translation>Exportar informe</translation>
    </message>
    <message>
        <source>Export Shapes</source>
        <translation>Exportar formas</translation>
    </message>
    <message>
        <source>Export Texture</source>
        <translation>Exportar textura</translation>
    </message>
    <message>
        <source>Export Tiled Model</source>
        <translation>Exportar modelo teselado</translation>
    </message>
    <message>
        <source>Import Cameras</source>
        <translation>Importar cámaras</translation>
    </message>
    <message>
        <source>Import Dem</source>
        <translation>Importar MDE</translation>
    </message>
    <message>
        <source>Import Masks</source>
        <translation>Importar máscaras</translation>
    </message>
    <message>
        <source>Import Model</source>
        <translation>Importar modelo</translation>
    </message>
    <message>
        <source>Import Shapes</source>
        <translation>Importar formas</translation>
    </message>
    <message>
        <source>Invert Masks</source>
        <translation>Invertir máscaras</translation>
    </message>
    <message>
        <source>Load Project</source>
        <translation>Cargar proyecto</translation>
    </message>
    <message>
        <source>Match Photos</source>
        <translation>Emparejar fotos</translation>
    </message>
    <message>
        <source>Merge Chunks</source>
        <translation>Fusionar bloques</translation>
    </message>
    <message>
        <source>Optimize Alignment</source>
        <translation>Optimizar alineación</translation>
    </message>
    <message>
        <source>Refine Markers</source>
        <translation>Refinar marcadores</translation>
    </message>
    <message>
        <source>Refine Points</source>
        <translation>Refinar puntos</translation>
    </message>
    <message>
        <source>Reset Masks</source>
        <translation>Restablecer máscaras</translation>
    </message>
    <message>
        <source>Reset Orthomosaic</source>
        <translation>Restablecer ortomosaico</translation>
    </message>
    <message>
        <source>Run Script</source>
        <translation>Ejecutar script</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Guardar proyecto</translation>
    </message>
    <message>
        <source>Select Dense Points</source>
        <translation>Seleccionar puntos densos</translation>
    </message>
    <message>
        <source>Smooth Model</source>
        <translation>Suavizar modelo</translation>
    </message>
    <message>
        <source>Track Markers</source>
        <translation>Seguir marcadores</translation>
    </message>
    <message>
        <source>Triangulate Points</source>
        <translation>Triangular puntos</translation>
    </message>
    <message>
        <source>Undistort Photos</source>
        <translation>Corregir distorsión de fotos</translation>
    </message>
    <message>
        <source>Update Orthomosaic</source>
        <translation>Actualizar ortomosaico</translation>
    </message>
    <message>
        <source>Highest</source>
        <translation>Muy alta</translation>
    </message>
    <message>
        <source>High</source>
        <translation>Alta</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Normal</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Baja</translation>
    </message>
    <message>
        <source>Lowest</source>
        <translation>Muy baja</translation>
    </message>
    <message>
        <source>#</source>
        <translation>N.º</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Proyecto</translation>
    </message>
    <message>
        <source>Started</source>
        <translation>Iniciado</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Estado</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>Prioridad</translation>
    </message>
    <message>
        <source>Current Task</source>
        <translation>Tarea actual</translation>
    </message>
    <message>
        <source>Elapsed / Left</source>
        <translation>Tiempo / Restante</translation>
    </message>
    <message>
        <source>Failures</source>
        <translation>Fallos</translation>
    </message>
    <message>
        <source>Nodes</source>
        <translation>Nodos</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Equipo</translation>
    </message>
    <message>
        <source>Batch #</source>
        <translation>Lote n.º</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progreso</translation>
    </message>
    <message>
        <source>Last Error</source>
        <translation>Último error</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>En espera...</translation>
    </message>
    <message>
        <source>Host name:</source>
        <translation>Nombre del equipo:</translation>
    </message>
    <message>
        <source>Port:</source>
        <translation>Puerto:</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Conectar</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Desconectar</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pausar</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Reanudar</translation>
    </message>
    <message>
        <source>Abort</source>
        <translation>Anular</translation>
    </message>
    <message>
        <source>Set Priority</source>
        <translation>Establecer prioridad</translation>
    </message>
    <message>
        <source>Details...</source>
        <translation>Detalles...</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Detener</translation>
    </message>
    <message>
        <source>Batches</source>
        <translation>Lotes</translation>
    </message>
</context>
<context>
    <name>TaskStatusWidget</name>
    <message>
        <source>%1/%2 completed</source>
        <translation>completados: %1/%2</translation>
    </message>
    <message>
        <source>%1/%2 nodes active</source>
        <translation>nodos activos: %1/%2</translation>
    </message>
    <message>
        <source>%1 failures</source>
        <translation>fallos: %1</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>En espera...</translation>
    </message>
    <message>
        <source>elapsed</source>
        <translation>transcurrido</translation>
    </message>
    <message>
        <source>left</source>
        <translation>restante</translation>
    </message>
    <message>
        <source>%1%</source>
        <comment>progress in percent</comment>
        <translation>%1 %</translation>
    </message>
</context>
<context>
    <name>Web</name>
    <message>
        <source>Views</source>
        <translation>Vistas</translation>
    </message>
    <message>
        <source>Farm summary</source>
        <translation>Resumen de la granja</translation>
    </message>
    <message>
        <source>data as of %1</source>
        <translation>datos de %1</translation>
    </message>
    <message>
        <source>Disconnected from server since %1 — showing the last known state</source>
        <translation>Desconectado del servidor desde %1 — se muestra el último estado conocido</translation>
    </message>
    <message>
        <source>Connected to the server again</source>
        <translation>Conectado de nuevo al servidor</translation>
    </message>
    <message>
        <source>Signed in as %1 (%2)</source>
        <translation>Sesión iniciada como %1 (%2)</translation>
    </message>
    <message>
        <source>No sign-in (%1)</source>
        <translation>Sin inicio de sesión (%1)</translation>
    </message>
    <message>
        <source>viewer</source>
        <translation>observador</translation>
    </message>
    <message>
        <source>operator</source>
        <translation>operador</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Idioma</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filtro</translation>
    </message>
    <message>
        <source>All statuses</source>
        <translation>Todos los estados</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Buscar</translation>
    </message>
    <message>
        <source>Text in any column</source>
        <translation>Texto en cualquier columna</translation>
    </message>
    <message numerus="yes">
        <source>%n selected</source>
        <translation>
            <numerusform>%n seleccionado</numerusform>
            <numerusform>%n seleccionados</numerusform>
        </translation>
    </message>
    <message>
        <source>Clear selection</source>
        <translation>Borrar la selección</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Acciones</translation>
    </message>
    <message>
        <source>Actions for #%1</source>
        <translation>Acciones para el n.º %1</translation>
    </message>
    <message numerus="yes">
        <source>Pause %n batches: %1</source>
        <translation>
            <numerusform>Pausar %n lote: %1</numerusform>
            <numerusform>Pausar %n lotes: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n batches: %1</source>
        <translation>
            <numerusform>Reanudar %n lote: %1</numerusform>
            <numerusform>Reanudar %n lotes: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Abort %n batches: %1</source>
        <translation>
            <numerusform>Anular %n lote: %1</numerusform>
            <numerusform>Anular %n lotes: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Pause %n nodes: %1</source>
        <translation>
            <numerusform>Pausar %n nodo: %1</numerusform>
            <numerusform>Pausar %n nodos: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n nodes: %1</source>
        <translation>
            <numerusform>Reanudar %n nodo: %1</numerusform>
            <numerusform>Reanudar %n nodos: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Stop %n nodes: %1</source>
        <translation>
            <numerusform>Detener %n nodo: %1</numerusform>
            <numerusform>Detener %n nodos: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n batches: %2</source>
        <translation>
            <numerusform>Prioridad %1 para %n lote: %2</numerusform>
            <numerusform>Prioridad %1 para %n lotes: %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n nodes: %2</source>
        <translation>
            <numerusform>Prioridad %1 para %n nodo: %2</numerusform>
            <numerusform>Prioridad %1 para %n nodos: %2</numerusform>
        </translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>Confirmar</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Cerrar</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Aceptado</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>Rechazado: %1</translation>
    </message>
    <message>
        <source>No answer in time: %1</source>
        <translation>Sin respuesta a tiempo: %1</translation>
    </message>
    <message>
        <source>Server unreachable: %1</source>
        <translation>Servidor inaccesible: %1</translation>
    </message>
    <message>
        <source>Not allowed: %1</source>
        <translation>No permitido: %1</translation>
    </message>
    <message>
        <source>No batches</source>
        <translation>No hay lotes</translation>
    </message>
    <message>
        <source>No nodes</source>
        <translation>No hay nodos</translation>
    </message>
    <message>
        <source>No batch matches the filter</source>
        <translation>Ningún lote coincide con el filtro</translation>
    </message>
    <message>
        <source>No node matches the filter</source>
        <translation>Ningún nodo coincide con el filtro</translation>
    </message>
    <message>
        <source>Batch #%1</source>
        <translation>Lote n.º %1</translation>
    </message>
    <message>
        <source>Back to the batch list</source>
        <translation>Volver a la lista de lotes</translation>
    </message>
    <message>
        <source>The farm has no batch #%1</source>
        <translation>La granja no tiene el lote n.º %1</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Cargando...</translation>
    </message>
    <message>
        <source>Shown: %1 of %2</source>
        <translation>Mostrados: %1 de %2</translation>
    </message>
    <message>
        <source>Results</source>
        <translation>Resultados</translation>
    </message>
    <message>
        <source>Sort by %1</source>
        <translation>Ordenar por %1</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Seleccionar</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Claro</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Oscuro</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>Tema</translation>
    </message>
    <message>
        <source>Reconnecting...</source>
        <translation>Reconectando...</translation>
    </message>
</context>
</TS>
