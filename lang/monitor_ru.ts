<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About Monitor</source>
        <translation>О программе Monitor</translation>
    </message>
    <message>
        <source>Network processing monitor</source>
        <translation>Монитор сетевой обработки</translation>
    </message>
    <message>
        <source>Copyright © 2026 Korvane. All rights reserved.</source>
        <translation>Copyright © 2026 Korvane. Все права защищены.</translation>
    </message>
</context>
<context>
    <name>BatchDetailsDialog</name>
    <message>
        <source>Batch Details</source>
        <translation>Сведения о пакете</translation>
    </message>
    <message>
        <source>Project:</source>
        <translation>Проект:</translation>
    </message>
    <message>
        <source>Last error:</source>
        <translation>Последняя ошибка:</translation>
    </message>
    <message>
        <source>Tasks</source>
        <translation>Задачи</translation>
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
        <translation>Сбой сети</translation>
    </message>
    <message>
        <source>Can&apos;t connect to server</source>
        <translation>Не удаётся подключиться к серверу</translation>
    </message>
    <message>
        <source>Disconnected from server</source>
        <translation>Соединение с сервером разорвано</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Файл</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Справка</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>&amp;Выход</translation>
    </message>
    <message>
        <source>About Monitor...</source>
        <translation>О программе Monitor...</translation>
    </message>
    <message>
        <source>Exit the application</source>
        <translation>Выйти из программы</translation>
    </message>
    <message>
        <source>Display program information, version number and copyright</source>
        <translation>Показать сведения о программе, номер версии и авторские права</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Готово</translation>
    </message>
</context>
<context>
    <name>Monitor</name>
    <message>
        <source>Add Photos</source>
        <translation>Добавить фотографии</translation>
    </message>
    <message>
        <source>Align Photos</source>
        <translation>Выровнять фотографии</translation>
    </message>
    <message>
        <source>Align Chunks</source>
        <translation>Выровнять чанки</translation>
    </message>
    <message>
        <source>Analyze Photos</source>
        <translation>Анализировать фотографии</translation>
    </message>
    <message>
        <source>Build Contours</source>
        <translation>Построить горизонтали</translation>
    </message>
    <message>
        <source>Build DEM</source>
        <translation>Построить ЦМР</translation>
    </message>
    <message>
        <source>Build Dense Cloud</source>
        <translation>Построить плотное облако</translation>
    </message>
    <message>
        <source>Build Mesh</source>
        <translation>Построить полигональную модель</translation>
    </message>
    <message>
        <source>Build Orthomosaic</source>
        <translation>Построить ортофотоплан</translation>
    </message>
    <message>
        <source>Build Texture</source>
        <translation>Построить текстуру</translation>
    </message>
    <message>
        <source>Build Tiled Model</source>
        <translation>Построить тайловую модель</translation>
    </message>
    <message>
        <source>Build UV</source>
        <translation>Построить UV-развёртку</translation>
    </message>
    <message>
        <source>Classify Ground Points</source>
        <translation>Классифицировать точки земли</translation>
    </message>
    <message>
        <source>Close Holes</source>
        <translation>Закрыть отверстия</translation>
    </message>
    <message>
        <source>Compact Dense Cloud</source>
        <translation>Сжать плотное облако</translation>
    </message>
    <message>
        <source>Decimate Mesh</source>
        <translation>Упростить полигональную модель</translation>
    </message>
    <message>
        <source>Detect Markers</source>
        <translation>Обнаружить маркеры</translation>
    </message>
    <message>
        <source>Duplicate Chunk</source>
        <translation>Дублировать чанк</translation>
    </message>
    <message>
        <source>Export Cameras</source>
        <translation>Экспортировать камеры</translation>
    </message>
    <message>
        <source>Export Contours</source>
        <translation>Экспортировать горизонтали</translation>
    </message>
    <message>
        <source>Export DEM</source>
        <translation>Экспортировать ЦМР</translation>
    </message>
    <message>
        <source>Export Depth Map</source>
        <translation>Экспортировать карту глубины</translation>
    </message>
    <message>
        <source>Export Masks</source>
        <translation>Экспортировать маски</translation>
    </message>
    <message>
        <source>Export Matches</source>
        <translation>Экспортировать соответствия</translation>
    </message>
    <message>
        <source>Export Model</source>
        <translation>Экспортировать модель</translation>
    </message>
    <message>
        <source>Export Orthomosaic</source>
        <translation>Экспортировать ортофотоплан</translation>
    </message>
    <message>
        <source>Export Orthophotos</source>
        <translation>Экспортировать ортофотоснимки</translation>
    </message>
    <message>
        <source>Export Panorama</source>
        <translation>Экспортировать панораму</translation>
    </message>
    <message>
        <source>Export Points</source>
        <translation>Экспортировать точки</translation>
    </message>
    <message>
        <source>Export Report</source>
        <translation>Экспортировать отчёт</translation>
    </message>
    <message>
        <source>Export Shapes</source>
        <translation>Экспортировать фигуры</translation>
    </message>
    <message>
        <source>Export Texture</source>
        <translation>Экспортировать текстуру</translation>
    </message>
    <message>
        <source>Export Tiled Model</source>
        <translation>Экспортировать тайловую модель</translation>
    </message>
    <message>
        <source>Import Cameras</source>
        <translation>Импортировать камеры</translation>
    </message>
    <message>
        <source>Import Dem</source>
        <translation>Импортировать ЦМР</translation>
    </message>
    <message>
        <source>Import Masks</source>
        <translation>Импортировать маски</translation>
    </message>
    <message>
        <source>Import Model</source>
        <translation>Импортировать модель</translation>
    </message>
    <message>
        <source>Import Shapes</source>
        <translation>Импортировать фигуры</translation>
    </message>
    <message>
        <source>Invert Masks</source>
        <translation>Инвертировать маски</translation>
    </message>
    <message>
        <source>Load Project</source>
        <translation>Загрузить проект</translation>
    </message>
    <message>
        <source>Match Photos</source>
        <translation>Сопоставить фотографии</translation>
    </message>
    <message>
        <source>Merge Chunks</source>
        <translation>Объединить чанки</translation>
    </message>
    <message>
        <source>Optimize Alignment</source>
        <translation>Оптимизировать выравнивание</translation>
    </message>
    <message>
        <source>Refine Markers</source>
        <translation>Уточнить маркеры</translation>
    </message>
    <message>
        <source>Refine Points</source>
        <translation>Уточнить точки</translation>
    </message>
    <message>
        <source>Reset Masks</source>
        <translation>Сбросить маски</translation>
    </message>
    <message>
        <source>Reset Orthomosaic</source>
        <translation>Сбросить ортофотоплан</translation>
    </message>
    <message>
        <source>Run Script</source>
        <translation>Выполнить скрипт</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Сохранить проект</translation>
    </message>
    <message>
        <source>Select Dense Points</source>
        <translation>Выбрать точки плотного облака</translation>
    </message>
    <message>
        <source>Smooth Model</source>
        <translation>Сгладить модель</translation>
    </message>
    <message>
        <source>Track Markers</source>
        <translation>Отслеживать маркеры</translation>
    </message>
    <message>
        <source>Triangulate Points</source>
        <translation>Триангулировать точки</translation>
    </message>
    <message>
        <source>Undistort Photos</source>
        <translation>Устранить дисторсию фотографий</translation>
    </message>
    <message>
        <source>Update Orthomosaic</source>
        <translation>Обновить ортофотоплан</translation>
    </message>
    <message>
        <source>Highest</source>
        <translation>Высший</translation>
    </message>
    <message>
        <source>High</source>
        <translation>Высокий</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Обычный</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Низкий</translation>
    </message>
    <message>
        <source>Lowest</source>
        <translation>Низший</translation>
    </message>
    <message>
        <source>#</source>
        <translation>№</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Проект</translation>
    </message>
    <message>
        <source>Started</source>
        <translation>Запущен</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Состояние</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>Приоритет</translation>
    </message>
    <message>
        <source>Current Task</source>
        <translation>Текущая задача</translation>
    </message>
    <message>
        <source>Elapsed / Left</source>
        <translation>Прошло / Осталось</translation>
    </message>
    <message>
        <source>Failures</source>
        <translation>Сбои</translation>
    </message>
    <message>
        <source>Nodes</source>
        <translation>Узлы</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Хост</translation>
    </message>
    <message>
        <source>Batch #</source>
        <translation>Пакет №</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Прогресс</translation>
    </message>
    <message>
        <source>Last Error</source>
        <translation>Последняя ошибка</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>Ожидание...</translation>
    </message>
    <message>
        <source>Host name:</source>
        <translation>Имя хоста:</translation>
    </message>
    <message>
        <source>Port:</source>
        <translation>Порт:</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Подключиться</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Отключиться</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Приостановить</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Возобновить</translation>
    </message>
    <message>
        <source>Abort</source>
        <translation>Прервать</translation>
    </message>
    <message>
        <source>Set Priority</source>
        <translation>Задать приоритет</translation>
    </message>
    <message>
        <source>Details...</source>
        <translation>Подробности...</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Остановить</translation>
    </message>
    <message>
        <source>Batches</source>
        <translation>Пакеты</translation>
    </message>
</context>
<context>
    <name>TaskStatusWidget</name>
    <message>
        <source>%1/%2 completed</source>
        <translation>выполнено: %1/%2</translation>
    </message>
    <message>
        <source>%1/%2 nodes active</source>
        <translation>активных узлов: %1/%2</translation>
    </message>
    <message>
        <source>%1 failures</source>
        <translation>сбоев: %1</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>Ожидание...</translation>
    </message>
    <message>
        <source>elapsed</source>
        <translation>прошло</translation>
    </message>
    <message>
        <source>left</source>
        <translation>осталось</translation>
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
        <translation>Представления</translation>
    </message>
    <message>
        <source>Farm summary</source>
        <translation>Сводка по ферме</translation>
    </message>
    <message>
        <source>data as of %1</source>
        <translation>данные на %1</translation>
    </message>
    <message>
        <source>Disconnected from server since %1 — showing the last known state</source>
        <translation>Соединение с сервером разорвано с %1 — показано последнее известное состояние</translation>
    </message>
    <message>
        <source>Connected to the server again</source>
        <translation>Соединение с сервером восстановлено</translation>
    </message>
    <message>
        <source>Signed in as %1 (%2)</source>
        <translation>Вы вошли как %1 (%2)</translation>
    </message>
    <message>
        <source>No sign-in (%1)</source>
        <translation>Без входа (%1)</translation>
    </message>
    <message>
        <source>viewer</source>
        <translation>наблюдатель</translation>
    </message>
    <message>
        <source>operator</source>
        <translation>оператор</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Язык</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Фильтр</translation>
    </message>
    <message>
        <source>All statuses</source>
        <translation>Все состояния</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Поиск</translation>
    </message>
    <message>
        <source>Text in any column</source>
        <translation>Текст в любом столбце</translation>
    </message>
    <message numerus="yes">
        <source>%n selected</source>
        <translation>
            <numerusform>Выбрано: %n</numerusform>
            <numerusform>Выбрано: %n</numerusform>
            <numerusform>Выбрано: %n</numerusform>
        </translation>
    </message>
    <message>
        <source>Clear selection</source>
        <translation>Снять выделение</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Действия</translation>
    </message>
    <message>
        <source>Actions for #%1</source>
        <translation>Действия для № %1</translation>
    </message>
    <message numerus="yes">
        <source>Pause %n batches: %1</source>
        <translation>
            <numerusform>Приостановить %n пакет: %1</numerusform>
            <numerusform>Приостановить %n пакета: %1</numerusform>
            <numerusform>Приостановить %n пакетов: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n batches: %1</source>
        <translation>
            <numerusform>Возобновить %n пакет: %1</numerusform>
            <numerusform>Возобновить %n пакета: %1</numerusform>
            <numerusform>Возобновить %n пакетов: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Abort %n batches: %1</source>
        <translation>
            <numerusform>Прервать %n пакет: %1</numerusform>
            <numerusform>Прервать %n пакета: %1</numerusform>
            <numerusform>Прервать %n пакетов: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Pause %n nodes: %1</source>
        <translation>
            <numerusform>Приостановить %n узел: %1</numerusform>
            <numerusform>Приостановить %n узла: %1</numerusform>
            <numerusform>Приостановить %n узлов: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Resume %n nodes: %1</source>
        <translation>
            <numerusform>Возобновить %n узел: %1</numerusform>
            <numerusform>Возобновить %n узла: %1</numerusform>
            <numerusform>Возобновить %n узлов: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Stop %n nodes: %1</source>
        <translation>
            <numerusform>Остановить %n узел: %1</numerusform>
            <numerusform>Остановить %n узла: %1</numerusform>
            <numerusform>Остановить %n узлов: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n batches: %2</source>
        <translation>
            <numerusform>Приоритет «%1» для %n пакета: %2</numerusform>
            <numerusform>Приоритет «%1» для %n пакетов: %2</numerusform>
            <numerusform>Приоритет «%1» для %n пакетов: %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Priority %1 for %n nodes: %2</source>
        <translation>
            <numerusform>Приоритет «%1» для %n узла: %2</numerusform>
            <numerusform>Приоритет «%1» для %n узлов: %2</numerusform>
            <numerusform>Приоритет «%1» для %n узлов: %2</numerusform>
        </translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>Подтвердить</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Закрыть</translation>
    </message>
    <message>
        <source>Accepted</source>
        <translation>Принято</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>Отклонено: %1</translation>
    </message>
    <message>
        <source>No answer in time: %1</source>
        <translation>Ответ не получен вовремя: %1</translation>
    </message>
    <message>
        <source>Server unreachable: %1</source>
        <translation>Сервер недоступен: %1</translation>
    </message>
    <message>
        <source>Not allowed: %1</source>
        <translation>Запрещено: %1</translation>
    </message>
    <message>
        <source>No batches</source>
        <translation>Нет пакетов</translation>
    </message>
    <message>
        <source>No nodes</source>
        <translation>Нет узлов</translation>
    </message>
    <message>
        <source>No batch matches the filter</source>
        <translation>Нет пакетов, соответствующих фильтру</translation>
    </message>
    <message>
        <source>No node matches the filter</source>
        <translation>Нет узлов, соответствующих фильтру</translation>
    </message>
    <message>
        <source>Batch #%1</source>
        <translation>Пакет № %1</translation>
    </message>
    <message>
        <source>Back to the batch list</source>
        <translation>Назад к списку пакетов</translation>
    </message>
    <message>
        <source>The farm has no batch #%1</source>
        <translation>На ферме нет пакета № %1</translation>
    </message>
    <message>
        <source>Loading...</source>
        <translation>Загрузка...</translation>
    </message>
    <message>
        <source>Shown: %1 of %2</source>
        <translation>Показано: %1 из %2</translation>
    </message>
    <message>
        <source>Results</source>
        <translation>Результаты</translation>
    </message>
    <message>
        <source>Sort by %1</source>
        <translation>Сортировать по столбцу «%1»</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Выбрать</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Светлая</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Тёмная</translation>
    </message>
    <message>
        <source>Theme</source>
        <translation>Тема</translation>
    </message>
    <message>
        <source>Reconnecting...</source>
        <translation>Переподключение...</translation>
    </message>
</context>
</TS>
